-- The row of one item, updatable.
CREATE PROCEDURE bsp_ItemLookup @SKU varchar(100), @MatrixSKU varchar(100) AS
SELECT * FROM Item WHERE SKU = @SKU AND MatrixSKU = @MatrixSKU
