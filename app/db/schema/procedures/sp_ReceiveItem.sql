-- Books what has arrived of one line: receipt, line, stock and ledger together. The number of the receipt comes back; -1 asks for a new one.
--
-- The ledger's cost of a piece is what the delivery really cost: Cost_ea = Cost + Share / Quantity, with four decimals; its trigger averages it into Cost_wt.
-- Example: 10 pieces at 2.00 with 1.50 of the freight: 2.15 a piece.
-- The first argument is the store and stays 1.
CREATE PROCEDURE sp_ReceiveItem @StoreID int, @PONumber int, @SKU varchar(100), @MatrixSKU varchar(100), @Quantity int, @Cost money, @Share money, @CostID int,
  @ReceiptNumber int, @PartNo varchar(50) AS
SET NOCOUNT ON
DECLARE @POID int, @received int, @line int
SELECT @POID = o.POID, @received = i.QtyRecvd + @Quantity FROM PurchaseOrder o INNER JOIN PurchaseOrderItem i ON i.POID = o.POID
  WHERE o.PONumber = @PONumber AND i.SKU = @SKU AND i.MatrixSKU = @MatrixSKU
IF @POID IS NULL
BEGIN
  RAISERROR('Order %d has no line for the item %s.', 16, 1, @PONumber, @MatrixSKU)
  RETURN
END
IF @received NOT BETWEEN -32768 AND 32767
BEGIN
  EXEC bsp_CheckQuantity @MatrixSKU, @received, 'the received quantity'
  RETURN
END
-- One statement counts and writes, so that two sessions never get the same number.
INSERT INTO PurchaseOrderReceipt (ReceiptNumber, POID, SKU, MatrixSKU, Quantity, Cost, OtherCost, CostID)
  SELECT CASE WHEN @ReceiptNumber = -1 THEN (SELECT ISNULL(MAX(ReceiptNumber), 0) + 1 FROM PurchaseOrderReceipt WITH (UPDLOCK, HOLDLOCK)) ELSE @ReceiptNumber END,
    @POID, @SKU, @MatrixSKU, @Quantity, @Cost, @Share, NULLIF(@CostID, 0)
IF @ReceiptNumber = -1
BEGIN
  SET @line = SCOPE_IDENTITY()
  SELECT @ReceiptNumber = ReceiptNumber FROM PurchaseOrderReceipt WHERE ReceiptLineID = @line
END
UPDATE PurchaseOrderItem SET QtyRecvd = QtyRecvd + @Quantity, PartNo = @PartNo WHERE POID = @POID AND SKU = @SKU AND MatrixSKU = @MatrixSKU
UPDATE Stock SET Quantity = Quantity + @Quantity WHERE SKU = @SKU AND MatrixSKU = @MatrixSKU
IF @@ROWCOUNT = 0
  INSERT INTO Stock (SKU, MatrixSKU, Quantity) VALUES (@SKU, @MatrixSKU, @Quantity)
INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Kind, Qty, Cost_ea)
  VALUES (@SKU, @MatrixSKU, 'Receipt', 'Receipt', @Quantity, ROUND(@Cost + CAST(@Share AS decimal(19, 6)) / @Quantity, 4))
SELECT @ReceiptNumber AS ReceiptNumber
