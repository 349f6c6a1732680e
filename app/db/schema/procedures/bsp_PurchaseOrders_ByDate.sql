-- The orders entered on that day, the newest first.
CREATE PROCEDURE bsp_PurchaseOrders_ByDate @Date datetime AS
SELECT PONumber, Supplier, PODate, Amount, OpenAmount, Status, POID FROM PurchaseOrderList
WHERE PODate >= DATEADD(day, DATEDIFF(day, 0, @Date), 0) AND PODate < DATEADD(day, DATEDIFF(day, 0, @Date) + 1, 0)
ORDER BY PONumber DESC
