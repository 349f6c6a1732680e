-- A supplier's orders, the newest first.
CREATE PROCEDURE bsp_PurchaseOrders_Supplier @SupID smallint AS
SELECT PONumber, Supplier, PODate, Amount, OpenAmount, Status, POID FROM PurchaseOrderList
WHERE SupID = @SupID
ORDER BY PONumber DESC
