-- Gives up open quantity of one line; it is on order no longer. The number of the cancellation comes back; -1 asks for a new one. The first argument is the store
-- and stays 1. More than is open is refused.
CREATE PROCEDURE sp_CancelItem @StoreID int, @PONumber int, @SKU varchar(100), @MatrixSKU varchar(100), @Quantity int, @CancelNumber int AS
SET NOCOUNT ON
DECLARE @POID int, @line int
SELECT @POID = POID FROM PurchaseOrder WHERE PONumber = @PONumber
-- Looks and writes at once, so that two sessions never give up the same pieces.
UPDATE PurchaseOrderItem SET QtyCanceled = QtyCanceled + @Quantity
  WHERE POID = @POID AND SKU = @SKU AND MatrixSKU = @MatrixSKU AND Qty - QtyRecvd - QtyCanceled >= @Quantity
IF @@ROWCOUNT = 0
BEGIN
  RAISERROR('Order %d has less than %d of the item %s open.', 16, 1, @PONumber, @Quantity, @MatrixSKU)
  RETURN
END
INSERT INTO PurchaseOrderCancel (CancelNumber, POID, SKU, MatrixSKU, Quantity)
  SELECT CASE WHEN @CancelNumber = -1 THEN (SELECT ISNULL(MAX(CancelNumber), 0) + 1 FROM PurchaseOrderCancel WITH (UPDLOCK, HOLDLOCK)) ELSE @CancelNumber END,
    @POID, @SKU, @MatrixSKU, @Quantity
SET @line = SCOPE_IDENTITY() -- a decimal: compared as such it would find no index
SELECT CancelNumber FROM PurchaseOrderCancel WHERE CancelLineID = @line
