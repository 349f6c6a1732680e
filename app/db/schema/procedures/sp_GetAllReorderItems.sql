-- The items at or below their reorder level, with what is on order.
--
-- At or below: active, sold at all (no matrix parent, no item of the registers' own), with a reorder quantity, and no more on hand than "Reorder @" (Restock) says.
-- An item that no supplier but the Empty one delivers is left out: the report of skipped items tells those.
-- What is on order already is not held against the level here: the order run asks for Reorder less QtyOrdered, and a line for which nothing is left is dropped.
-- Example: 3 on hand, Restock 5, Reorder 12: told. With 12 on order it is told with QtyOrdered 12, and the run orders nothing.
CREATE PROCEDURE sp_GetAllReorderItems AS
SELECT Item.SKU, Item.MatrixSKU, Stock.Quantity, Item.Restock, Item.Reorder,
  (SELECT ISNULL(SUM(CASE WHEN i.Qty > i.QtyRecvd + i.QtyCanceled THEN i.Qty - i.QtyRecvd - i.QtyCanceled ELSE 0 END), 0) FROM PurchaseOrderItem i INNER JOIN PurchaseOrder o ON o.POID = i.POID
    WHERE i.SKU = Item.SKU AND i.MatrixSKU = Item.MatrixSKU AND o.Status <> 'C' AND i.Qty > i.QtyRecvd + i.QtyCanceled) AS QtyOrdered
FROM Item INNER JOIN Stock ON Stock.SKU = Item.SKU AND Stock.MatrixSKU = Item.MatrixSKU
WHERE Item.Active = 1 AND Item.TypeID <> 4 AND Item.SKU NOT LIKE '$%' AND Item.Reorder > 0 AND Stock.Quantity <= Item.Restock
  AND EXISTS (SELECT * FROM SupplierMatrixDetail d WHERE d.SKU = Item.SKU AND d.MatrixSKU = Item.MatrixSKU AND d.SupID <> 0)
ORDER BY Item.SKU, Item.MatrixSKU
