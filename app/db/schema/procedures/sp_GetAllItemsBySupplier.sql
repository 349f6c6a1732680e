-- The items that a supplier delivers, for picking: active ones, no matrix parents.
CREATE PROCEDURE sp_GetAllItemsBySupplier @SupID smallint AS
SELECT Item.MatrixSKU, Item.SKU, Item.Name, Stock.Quantity, Item.Restock
FROM Item INNER JOIN Stock ON Stock.SKU = Item.SKU AND Stock.MatrixSKU = Item.MatrixSKU
WHERE Item.Active = 1 AND Item.TypeID <> 4 AND EXISTS (SELECT * FROM SupplierMatrixDetail d WHERE d.SKU = Item.SKU AND d.MatrixSKU = Item.MatrixSKU AND d.SupID = @SupID)
ORDER BY Item.Name, Item.SKU, Item.MatrixSKU
