-- The columns of sp_GetAllReorderItems for one item, whatever its level; one that never had stock has 0 of it.
CREATE PROCEDURE sp_GetItemReorderData @SKU varchar(100), @MatrixSKU varchar(100) AS
SELECT Item.SKU, Item.MatrixSKU, ISNULL(Stock.Quantity, 0) AS Quantity, Item.Restock, Item.Reorder,
  (SELECT ISNULL(SUM(CASE WHEN i.Qty > i.QtyRecvd + i.QtyCanceled THEN i.Qty - i.QtyRecvd - i.QtyCanceled ELSE 0 END), 0) FROM PurchaseOrderItem i INNER JOIN PurchaseOrder o ON o.POID = i.POID
    WHERE i.SKU = Item.SKU AND i.MatrixSKU = Item.MatrixSKU AND o.Status <> 'C' AND i.Qty > i.QtyRecvd + i.QtyCanceled) AS QtyOrdered
FROM Item LEFT JOIN Stock ON Stock.SKU = Item.SKU AND Stock.MatrixSKU = Item.MatrixSKU
WHERE Item.SKU = @SKU AND Item.MatrixSKU = @MatrixSKU
