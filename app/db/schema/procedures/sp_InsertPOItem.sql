-- Adds a line to an order; what was really entered. A line is dropped (0) when there is nothing to order: a quantity below 1. An item that the order has already
-- is ordered once, in the sum.
CREATE PROCEDURE sp_InsertPOItem @POID smallint, @SKU varchar(100), @MatrixSKU varchar(100), @Qty smallint, @Cost money, @PartNo varchar(50) AS
SET NOCOUNT ON
IF @Qty < 1
BEGIN
  SELECT CAST(0 AS smallint) AS Qty
  RETURN
END
IF EXISTS (SELECT * FROM PurchaseOrderItem WHERE POID = @POID AND SKU = @SKU AND MatrixSKU = @MatrixSKU)
  UPDATE PurchaseOrderItem SET Qty = Qty + @Qty, Cost = @Cost, PartNo = @PartNo WHERE POID = @POID AND SKU = @SKU AND MatrixSKU = @MatrixSKU
ELSE
  INSERT INTO PurchaseOrderItem (POID, SKU, MatrixSKU, Qty, Cost, PartNo) VALUES (@POID, @SKU, @MatrixSKU, @Qty, @Cost, @PartNo)
SELECT Qty FROM PurchaseOrderItem WHERE POID = @POID AND SKU = @SKU AND MatrixSKU = @MatrixSKU
