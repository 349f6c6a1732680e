-- Adds a line to an order; what was really entered. A line is dropped (0) when there is nothing to order: a quantity below 1. An item that the order has already
-- is ordered once, in the sum.
CREATE PROCEDURE sp_InsertPOItem @POID int, @SKU varchar(100), @MatrixSKU varchar(100), @Qty int, @Cost money, @PartNo varchar(50) AS
SET NOCOUNT ON
IF @Qty < 1
BEGIN
  SELECT CAST(0 AS smallint) AS Qty
  RETURN
END
DECLARE @sum int, @refused int
SELECT @sum = @Qty + ISNULL((SELECT Qty FROM PurchaseOrderItem WHERE POID = @POID AND SKU = @SKU AND MatrixSKU = @MatrixSKU), 0)
EXEC @refused = bsp_CheckQuantity @MatrixSKU, @sum, 'the ordered quantity'
IF @refused <> 0
  RETURN
IF EXISTS (SELECT * FROM PurchaseOrderItem WHERE POID = @POID AND SKU = @SKU AND MatrixSKU = @MatrixSKU)
  UPDATE PurchaseOrderItem SET Qty = @sum, Cost = @Cost, PartNo = @PartNo WHERE POID = @POID AND SKU = @SKU AND MatrixSKU = @MatrixSKU
ELSE
  INSERT INTO PurchaseOrderItem (POID, SKU, MatrixSKU, Qty, Cost, PartNo) VALUES (@POID, @SKU, @MatrixSKU, @Qty, @Cost, @PartNo)
SELECT Qty FROM PurchaseOrderItem WHERE POID = @POID AND SKU = @SKU AND MatrixSKU = @MatrixSKU
