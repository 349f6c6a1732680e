-- The lines of an order that are still open.
CREATE PROCEDURE sp_GetPOItemToReceive @PONumber int AS
SELECT i.SKU, i.MatrixSKU, i.QtyCanceled, i.Cost, Item.Name, i.Qty, i.PartNo, i.QtyRecvd
FROM PurchaseOrderItem i INNER JOIN PurchaseOrder o ON o.POID = i.POID INNER JOIN Item ON Item.SKU = i.SKU AND Item.MatrixSKU = i.MatrixSKU
WHERE o.PONumber = @PONumber AND i.Qty > i.QtyRecvd + i.QtyCanceled
ORDER BY Item.Name, i.SKU, i.MatrixSKU
