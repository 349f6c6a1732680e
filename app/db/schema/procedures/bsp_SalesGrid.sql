-- The sale events of an item, or of all items: those that run now, then the others; among both those that end last come first.
CREATE PROCEDURE bsp_SalesGrid @SKU varchar(100) = NULL, @MatrixSKU varchar(100) = NULL AS
SELECT ID, SKU, MatrixSKU, DateFrom, DateTo, SalePrice FROM Sales
WHERE (@SKU IS NULL OR SKU = @SKU) AND (@MatrixSKU IS NULL OR MatrixSKU = @MatrixSKU)
ORDER BY CASE WHEN DateFrom <= GETDATE() AND DateTo >= GETDATE() THEN 0 ELSE 1 END, DateTo DESC, ID
