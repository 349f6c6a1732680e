-- Fills the running balance and the weighted average cost of each new movement, in the order of posting: the order of LedgerID, whatever the clocks said.
--
-- Moving weighted average (perpetual inventory): units that come in are averaged with those on hand,
--   Cost_wt = (on hand * old Cost_wt + Qty * Cost_ea) / (on hand + Qty),
-- units that go out leave at the average and do not change it. With nothing (or less) on hand, the cost of what comes in is the new average.
-- An adjustment taken back (ReversesID) leaves the average as if it had not been made: units that came in go out at their own cost by the same formula, unless
-- nothing would be left or the rest would cost less than nothing; units that had gone out come back at the average.
-- Example: of 15 at 2.50 the 5 that came in at 3.50 go again: (15 * 2.50 - 5 * 3.50) / 10 = 2.00.
-- The casts keep the sum within 38 digits: a wider one would lose its fourth decimal.
-- A load of past movements that brings both figures keeps them.
-- Example: 10 at 2.00 on hand, 5 come in at 3.50: (10 * 2.00 + 5 * 3.50) / 15 = 2.50.
CREATE TRIGGER InventoryLedger_Insert ON InventoryLedger AFTER INSERT AS
BEGIN
  SET NOCOUNT ON
  IF NOT EXISTS (SELECT * FROM inserted WHERE QtyAfter IS NULL OR Cost_wt IS NULL)
    RETURN
  DECLARE @id int, @sku varchar(100), @matrix varchar(100), @qty int, @cost money, @onHand int, @average money, @reverses int, @rest decimal(19, 4), @stock int
  SELECT @id = MIN(LedgerID) FROM inserted
  WHILE @id IS NOT NULL
  BEGIN
    SELECT @sku = SKU, @matrix = MatrixSKU, @qty = Qty, @cost = Cost_ea, @reverses = ReversesID, @onHand = 0, @average = NULL FROM inserted WHERE LedgerID = @id
    -- Whoever holds the item's stock row builds on its last movement; others wait.
    SELECT @stock = Quantity FROM Stock WITH (UPDLOCK, HOLDLOCK) WHERE SKU = @sku AND MatrixSKU = @matrix
    SELECT TOP 1 @onHand = QtyAfter, @average = Cost_wt FROM InventoryLedger
      WHERE SKU = @sku AND MatrixSKU = @matrix AND LedgerID < @id AND QtyAfter IS NOT NULL
      ORDER BY LedgerID DESC
    IF @reverses IS NOT NULL AND @average IS NOT NULL
    BEGIN
      IF @qty < 0 AND @onHand + @qty > 0
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
    UPDATE InventoryLedger SET QtyAfter = @onHand + @qty, Cost_wt = @average WHERE LedgerID = @id
    SELECT @id = MIN(LedgerID) FROM inserted WHERE LedgerID > @id
  END
END
