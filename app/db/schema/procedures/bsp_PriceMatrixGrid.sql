-- The quantity breaks of an item in one tier, lowest quantity first, updatable.
CREATE PROCEDURE bsp_PriceMatrixGrid @SKU varchar(100), @MatrixSKU varchar(100), @Tier int AS
SELECT SKU, MatrixSKU, Tier, Quantity, Price FROM PriceMatrix
WHERE SKU = @SKU AND MatrixSKU = @MatrixSKU AND Tier = @Tier
ORDER BY Quantity
