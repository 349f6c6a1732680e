-- The lines of an order that are still open. A posting that reads them keeps them as they are until it is committed.
CREATE PROCEDURE sp_GetPOItemToReceive @PONumber int AS
SELECT i.SKU, i.MatrixSKU, i.QtyCanceled, i.Cost, Item.Name, i.Qty, i.PartNo, i.QtyRecvd
FROM PurchaseOrderItem i WITH (UPDLOCK) INNER JOIN PurchaseOrder o ON o.POID = i.POID INNER JOIN Item ON Item.SKU = i.SKU AND Item.MatrixSKU = i.MatrixSKU
WHERE o.PONumber = @PONumber AND i.Qty > i.QtyRecvd + i.QtyCanceled
ORDER BY Item.Name, i.SKU, i.MatrixSKU
