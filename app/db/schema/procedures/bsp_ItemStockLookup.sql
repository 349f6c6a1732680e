-- What is on hand of an item, and when to reorder it.
CREATE PROCEDURE bsp_ItemStockLookup @SKU varchar(100), @MatrixSKU varchar(100) AS
SELECT Stock.Quantity, Item.DateLastSold, Item.Reorder, Item.Restock
FROM Stock INNER JOIN Item ON Item.SKU = Stock.SKU AND Item.MatrixSKU = Stock.MatrixSKU
WHERE Stock.SKU = @SKU AND Stock.MatrixSKU = @MatrixSKU
