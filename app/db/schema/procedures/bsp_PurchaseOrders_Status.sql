-- The orders of one state or of two, the newest first. An order without a number is not complete yet and is not told.
CREATE PROCEDURE bsp_PurchaseOrders_Status @Status char(1), @OrStatus char(1) = NULL AS
SELECT PurchaseOrder.PONumber, Suppliers.Supplier, PurchaseOrder.PODate,
  (SELECT SUM(Qty * Cost) FROM PurchaseOrderItem WHERE POID = PurchaseOrder.POID) AS Amount,
  (SELECT SUM((Qty - QtyRecvd - QtyCanceled) * Cost) FROM PurchaseOrderItem WHERE POID = PurchaseOrder.POID) AS OpenAmount,
  CASE PurchaseOrder.Status WHEN 'O' THEN 'Open' WHEN 'P' THEN 'Partial' ELSE 'Closed' END AS Status, PurchaseOrder.POID
FROM PurchaseOrder INNER JOIN Suppliers ON Suppliers.SupID = PurchaseOrder.SupID
WHERE PurchaseOrder.PONumber IS NOT NULL AND PurchaseOrder.Status IN (@Status, @OrStatus)
ORDER BY PurchaseOrder.PONumber DESC
