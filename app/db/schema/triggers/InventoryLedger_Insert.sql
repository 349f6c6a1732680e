-- Fills the running balance and the weighted average cost of each new movement, in the order of posting: the order of LedgerID, whatever the clocks said.
--
-- Moving weighted average (perpetual inventory): units that come in are averaged with those on hand,
--   Cost_wt = (on hand * old Cost_wt + Qty * Cost_ea) / (on hand + Qty),
-- units that go out leave at the average and do not change it. With nothing (or less) on hand, the cost of what comes in is the new average.
-- An adjustment taken back (ReversesID) leaves the average as if it had not been made: units that came in go out at their own cost by the same formula, unless
-- nothing would be left or the rest would cost less than nothing; units that had gone out come back at the average at which they left (the Cost_wt of the row taken
-- back), averaged with those on hand: what they were worth then, no more and no less.
-- Example: 10 at 2.00, 5 written off, 5 come in at 4.00: 10 at 3.00. The write-off is undone: (10 * 3.00 + 5 * 2.00) / 15 = 2.6667.
-- Example: of 15 at 2.50 the 5 that came in at 3.50 go again: (15 * 2.50 - 5 * 3.50) / 10 = 2.00.
-- The casts keep the sum within 38 digits: a wider one would lose its fourth decimal.
-- A load of past movements that brings both figures keeps them.
-- PostDate grows within an item, so that its last row by date is the last one posted, also when a clock was set back; a row that is dated in the past keeps its date.
-- Kind, when the writer leaves it empty, follows from the Type.
-- Example: 10 at 2.00 on hand, 5 come in at 3.50: (10 * 2.00 + 5 * 3.50) / 15 = 2.50.
CREATE TRIGGER InventoryLedger_Insert ON InventoryLedger AFTER INSERT AS
BEGIN
  SET NOCOUNT ON
  IF NOT EXISTS (SELECT * FROM inserted WHERE QtyAfter IS NULL OR Cost_wt IS NULL)
  BEGIN
    IF EXISTS (SELECT * FROM inserted WHERE Kind = '')
      UPDATE InventoryLedger SET Kind = CASE WHEN Type IN ('Sale', 'Return', 'Receipt', 'Cancel') THEN Type WHEN Type = 'Opening Stock' THEN 'Opening' ELSE 'Adjustment' END
        WHERE Kind = '' AND LedgerID IN (SELECT LedgerID FROM inserted)
    RETURN
  END
  DECLARE @id int, @sku varchar(100), @matrix varchar(100), @qty int, @cost money, @onHand int, @average money, @reverses int, @rest decimal(19, 4), @stock int, @posted datetime, @last datetime
  SET @id = -2147483648
  WHILE 1 = 1
  BEGIN
    SELECT TOP 1 @id = LedgerID, @sku = SKU, @matrix = MatrixSKU, @qty = Qty, @cost = Cost_ea, @reverses = ReversesID, @posted = PostDate, @onHand = 0, @average = NULL, @last = NULL
      FROM inserted WHERE LedgerID > @id ORDER BY LedgerID
    IF @@ROWCOUNT = 0
      BREAK
    -- Whoever holds the item's stock row builds on its last movement; others wait.
    SELECT @stock = Quantity FROM Stock WITH (UPDLOCK, HOLDLOCK) WHERE SKU = @sku AND MatrixSKU = @matrix
    SELECT TOP 1 @onHand = QtyAfter, @average = Cost_wt FROM InventoryLedger
      WHERE SKU = @sku AND MatrixSKU = @matrix AND LedgerID < @id AND QtyAfter IS NOT NULL
      ORDER BY LedgerID DESC
    IF @reverses IS NOT NULL AND @qty > 0
      SELECT @cost = Cost_wt FROM InventoryLedger WHERE LedgerID = @reverses AND Cost_wt IS NOT NULL
    IF @reverses IS NOT NULL AND @qty <= 0 AND @average IS NOT NULL
    BEGIN
      IF @onHand + @qty > 0
      BEGIN
        SET @rest = ROUND((CAST(@onHand AS decimal(10, 0)) * CAST(@average AS decimal(19, 4)) + @qty * CAST(@cost AS decimal(19, 4))) / (@onHand + @qty), 4)
        IF @rest >= 0
          SET @average = @rest
      END
    END
    ELSE IF @qty > 0 AND (@onHand <= 0 OR @average IS NULL)
      SET @average = @cost
    ELSE IF @qty > 0
      SET @average = ROUND((CAST(@onHand AS decimal(10, 0)) * CAST(@average AS decimal(19, 4)) + @qty * CAST(@cost AS decimal(19, 4))) / (@onHand + @qty), 4)
    ELSE IF @average IS NULL
      SET @average = @cost
    IF @posted > DATEADD(minute, -1, GETDATE())
      SELECT @last = MAX(PostDate) FROM InventoryLedger WHERE SKU = @sku AND MatrixSKU = @matrix AND LedgerID < @id
    UPDATE InventoryLedger SET Kind = CASE WHEN Kind <> '' THEN Kind WHEN Type IN ('Sale', 'Return', 'Receipt', 'Cancel') THEN Type WHEN Type = 'Opening Stock' THEN 'Opening' ELSE 'Adjustment' END,
      QtyAfter = @onHand + @qty, Cost_wt = @average WHERE LedgerID = @id
    -- Apart, since the date stands in an index and seldom changes.
    IF @last >= @posted
      UPDATE InventoryLedger SET PostDate = DATEADD(millisecond, 4, @last) WHERE LedgerID = @id
  END
END
