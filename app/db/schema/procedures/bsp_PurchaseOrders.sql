-- All orders, the newest first.
CREATE PROCEDURE bsp_PurchaseOrders AS
SELECT PONumber, Supplier, PODate, Amount, OpenAmount, Status, POID FROM PurchaseOrderList
ORDER BY PONumber DESC
