-- The orders with an item of that code, its own or its parent's, the newest first.
CREATE PROCEDURE bsp_PurchaseOrders_SKU @SKU varchar(100) AS
SELECT PONumber, Supplier, PODate, Amount, OpenAmount, Status, POID FROM PurchaseOrderList
WHERE POID IN (SELECT POID FROM PurchaseOrderItem WHERE SKU = @SKU OR MatrixSKU = @SKU)
ORDER BY PONumber DESC
