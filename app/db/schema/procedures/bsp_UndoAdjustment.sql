-- Takes an adjustment back: an opposite row with the same cost that names the row it reverses, and the stock moved along, in one transaction. Nothing is deleted.
-- Only adjustments (by the row's Kind; its reason code may have been renamed since), and each once. Refused says why not; it is empty when it was done.
CREATE PROCEDURE bsp_UndoAdjustment @LedgerID int AS
BEGIN
  SET NOCOUNT ON
  SET XACT_ABORT ON
  DECLARE @sku varchar(100), @matrix varchar(100), @type varchar(50), @kind varchar(20), @qty int, @cost money, @reverses int, @by int, @stock int, @refused varchar(255)
  SET @refused = ''
  BEGIN TRANSACTION
  -- The lock of the stock row comes before all else, here and in the ledger's trigger: two cannot undo the same row, nor wait for each other.
  SELECT @sku = SKU, @matrix = MatrixSKU FROM InventoryLedger WHERE LedgerID = @LedgerID
  SELECT @stock = Quantity FROM Stock WITH (UPDLOCK, HOLDLOCK) WHERE SKU = @sku AND MatrixSKU = @matrix
  SELECT @sku = SKU, @matrix = MatrixSKU, @type = Type, @kind = Kind, @qty = Qty, @cost = Cost_ea, @reverses = ReversesID FROM InventoryLedger WHERE LedgerID = @LedgerID
  SELECT @by = MIN(LedgerID) FROM InventoryLedger WHERE SKU = @sku AND MatrixSKU = @matrix AND ReversesID = @LedgerID
  IF @sku IS NULL
    SET @refused = 'That movement is not there any more.'
  ELSE IF @reverses IS NOT NULL
    SET @refused = 'This row takes back row ' + CAST(@reverses AS varchar(12)) + ' already. Post an adjustment to bring it back.'
  ELSE IF @by IS NOT NULL
    SET @refused = 'This adjustment has been undone already, by row ' + CAST(@by AS varchar(12)) + '.'
  ELSE IF @kind <> 'Adjustment'
    SET @refused = 'Only adjustments can be undone. "' + @type + '" is no adjustment code.'
  ELSE IF @stock - @qty NOT BETWEEN -32768 AND 32767
    SET @refused = 'The stock would not fit any more: it would be ' + CAST(@stock - @qty AS varchar(12)) + '.'
  IF @refused = ''
  BEGIN
    UPDATE Stock SET Quantity = Quantity - @qty WHERE SKU = @sku AND MatrixSKU = @matrix
    INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Kind, Qty, Cost_ea, ReversesID) VALUES (@sku, @matrix, @type, @kind, -@qty, @cost, @LedgerID)
  END
  COMMIT TRANSACTION
  SELECT @refused AS Refused
END
