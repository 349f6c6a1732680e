-- Changes a line of an order.
CREATE PROCEDURE sp_UpdatePOItem @POID smallint, @SKU varchar(100), @MatrixSKU varchar(100), @Qty smallint, @Cost money, @PartNo varchar(50) AS
UPDATE PurchaseOrderItem SET Qty = @Qty, Cost = @Cost, PartNo = @PartNo WHERE POID = @POID AND SKU = @SKU AND MatrixSKU = @MatrixSKU
