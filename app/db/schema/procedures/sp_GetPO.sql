-- An order by the number that the store knows it by, with its supplier and its lines; no row when there is no such order.
CREATE PROCEDURE sp_GetPO @PONumber int AS
SELECT o.POID, o.PONumber, o.PODate, o.Status, o.SupID, s.Supplier, i.SKU, i.MatrixSKU, t.Name, i.PartNo, i.Qty, i.QtyRecvd, i.QtyCanceled, i.Cost, i.Qty * i.Cost AS Amount
FROM PurchaseOrder o INNER JOIN Suppliers s ON s.SupID = o.SupID
  LEFT JOIN PurchaseOrderItem i ON i.POID = o.POID
  LEFT JOIN Item t ON t.SKU = i.SKU AND t.MatrixSKU = i.MatrixSKU
WHERE o.PONumber = @PONumber
ORDER BY i.SKU, i.MatrixSKU
