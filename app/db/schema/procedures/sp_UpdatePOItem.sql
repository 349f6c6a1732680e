-- Changes a line of an order.
CREATE PROCEDURE sp_UpdatePOItem @POID int, @SKU varchar(100), @MatrixSKU varchar(100), @Qty int, @Cost money, @PartNo varchar(50) AS
DECLARE @refused int
EXEC @refused = bsp_CheckQuantity @MatrixSKU, @Qty, 'the ordered quantity'
IF @refused = 0
  UPDATE PurchaseOrderItem SET Qty = @Qty, Cost = @Cost, PartNo = @PartNo WHERE POID = @POID AND SKU = @SKU AND MatrixSKU = @MatrixSKU
