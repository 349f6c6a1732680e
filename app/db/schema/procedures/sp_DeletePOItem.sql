-- Takes a line off an order.
CREATE PROCEDURE sp_DeletePOItem @POID smallint, @SKU varchar(100), @MatrixSKU varchar(100) AS
DELETE FROM PurchaseOrderItem WHERE POID = @POID AND SKU = @SKU AND MatrixSKU = @MatrixSKU
