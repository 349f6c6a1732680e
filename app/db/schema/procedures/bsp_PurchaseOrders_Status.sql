-- The orders of one state or of two, the newest first.
CREATE PROCEDURE bsp_PurchaseOrders_Status @Status char(1), @OrStatus char(1) = NULL AS
SELECT PONumber, Supplier, PODate, Amount, OpenAmount, Status, POID FROM PurchaseOrderList
WHERE Letter IN (@Status, @OrStatus)
ORDER BY PONumber DESC
