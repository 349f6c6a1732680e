-- The items of sp_GetAllReorderItems, for picking.
CREATE PROCEDURE sp_GetAllReorderList AS
SELECT Item.MatrixSKU, Item.SKU, Item.Name, Stock.Quantity, Item.Restock
FROM Item INNER JOIN Stock ON Stock.SKU = Item.SKU AND Stock.MatrixSKU = Item.MatrixSKU
WHERE Item.Active = 1 AND Item.TypeID <> 4 AND Item.SKU NOT LIKE '$%' AND Item.Reorder > 0 AND Stock.Quantity <= Item.Restock
  AND EXISTS (SELECT * FROM SupplierMatrixDetail d WHERE d.SKU = Item.SKU AND d.MatrixSKU = Item.MatrixSKU AND d.SupID <> 0)
ORDER BY Item.Name, Item.SKU, Item.MatrixSKU
