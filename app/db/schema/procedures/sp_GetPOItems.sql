-- The lines of an order.
CREATE PROCEDURE sp_GetPOItems @PONumber int AS
SELECT i.SKU, i.MatrixSKU, i.Qty, i.Cost, Item.Name, i.PartNo, i.QtyCanceled, i.QtyRecvd
FROM PurchaseOrderItem i INNER JOIN PurchaseOrder o ON o.POID = i.POID INNER JOIN Item ON Item.SKU = i.SKU AND Item.MatrixSKU = i.MatrixSKU
WHERE o.PONumber = @PONumber
ORDER BY Item.Name, i.SKU, i.MatrixSKU
