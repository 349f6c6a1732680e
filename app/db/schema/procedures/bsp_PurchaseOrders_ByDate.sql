-- The orders entered on that day, the newest first. An order without a number is not complete yet and is not told.
CREATE PROCEDURE bsp_PurchaseOrders_ByDate @Date datetime AS
SELECT PurchaseOrder.PONumber, Suppliers.Supplier, PurchaseOrder.PODate,
  (SELECT SUM(Qty * Cost) FROM PurchaseOrderItem WHERE POID = PurchaseOrder.POID) AS Amount,
  (SELECT SUM((Qty - QtyRecvd - QtyCanceled) * Cost) FROM PurchaseOrderItem WHERE POID = PurchaseOrder.POID) AS OpenAmount,
  CASE PurchaseOrder.Status WHEN 'O' THEN 'Open' WHEN 'P' THEN 'Partial' ELSE 'Closed' END AS Status, PurchaseOrder.POID
FROM PurchaseOrder INNER JOIN Suppliers ON Suppliers.SupID = PurchaseOrder.SupID
WHERE PurchaseOrder.PONumber IS NOT NULL AND PurchaseOrder.PODate >= DATEADD(day, DATEDIFF(day, 0, @Date), 0) AND PurchaseOrder.PODate < DATEADD(day, DATEDIFF(day, 0, @Date) + 1, 0)
ORDER BY PurchaseOrder.PONumber DESC
