-- The orders as they are listed: what they come to, what of it is still open (what came beyond a line's quantity takes nothing off the others), the state as a word. An order without a number is not complete yet and is not told.
CREATE VIEW PurchaseOrderList AS
SELECT PurchaseOrder.PONumber, Suppliers.Supplier, PurchaseOrder.PODate,
  (SELECT SUM(Qty * Cost) FROM PurchaseOrderItem WHERE POID = PurchaseOrder.POID) AS Amount,
  (SELECT SUM(CASE WHEN Qty > QtyRecvd + QtyCanceled THEN (Qty - QtyRecvd - QtyCanceled) * Cost ELSE 0 END) FROM PurchaseOrderItem WHERE POID = PurchaseOrder.POID) AS OpenAmount,
  CASE PurchaseOrder.Status WHEN 'O' THEN 'Open' WHEN 'P' THEN 'Partial' ELSE 'Closed' END AS Status, PurchaseOrder.POID,
  PurchaseOrder.SupID, PurchaseOrder.Status AS Letter
FROM PurchaseOrder INNER JOIN Suppliers ON Suppliers.SupID = PurchaseOrder.SupID
WHERE PurchaseOrder.PONumber IS NOT NULL
