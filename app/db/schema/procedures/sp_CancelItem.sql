-- Gives up open quantity of one line; it is on order no longer. The number of the cancellation comes back; -1 asks for a new one. The first argument is the store
-- and stays 1. More than is open is refused.
CREATE PROCEDURE sp_CancelItem @StoreID int, @PONumber smallint, @SKU varchar(100), @MatrixSKU varchar(100), @Quantity smallint, @CancelNumber int AS
SET NOCOUNT ON
DECLARE @POID smallint, @open int
SELECT @POID = o.POID, @open = i.Qty - i.QtyRecvd - i.QtyCanceled FROM PurchaseOrder o INNER JOIN PurchaseOrderItem i ON i.POID = o.POID
  WHERE o.PONumber = @PONumber AND i.SKU = @SKU AND i.MatrixSKU = @MatrixSKU
IF @POID IS NULL OR @Quantity > @open
BEGIN
  RAISERROR('Order %d has less than %d of the item %s open.', 16, 1, @PONumber, @Quantity, @MatrixSKU)
  RETURN
END
IF @CancelNumber = -1
  SELECT @CancelNumber = ISNULL(MAX(CancelNumber), 0) + 1 FROM PurchaseOrderCancel
INSERT INTO PurchaseOrderCancel (CancelNumber, POID, SKU, MatrixSKU, Quantity) VALUES (@CancelNumber, @POID, @SKU, @MatrixSKU, @Quantity)
UPDATE PurchaseOrderItem SET QtyCanceled = QtyCanceled + @Quantity WHERE POID = @POID AND SKU = @SKU AND MatrixSKU = @MatrixSKU
SELECT @CancelNumber AS CancelNumber
