-- The matrix categories that an item has, updatable.
CREATE PROCEDURE bsp_ItemMatrixGrid @SKU varchar(100), @MatrixSKU varchar(100) AS
SELECT m.SKU, m.MatrixSKU, m.CategoryID, c.CategoryName
FROM ItemMatrix m INNER JOIN ItemMatrixCategories c ON c.CategoryID = m.CategoryID
WHERE m.SKU = @SKU AND m.MatrixSKU = @MatrixSKU
ORDER BY c.CategoryName, m.CategoryID
