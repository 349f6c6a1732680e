-- The substitutes of an item in their order, updatable.
CREATE PROCEDURE bsp_SubsGrid @SKU varchar(100), @MatrixSKU varchar(100) AS
SELECT SKU, MatrixSKU, SubSKU, SubMatrixSKU, Priority, Notes FROM ItemSubstitutes
WHERE SKU = @SKU AND MatrixSKU = @MatrixSKU
ORDER BY Priority, SubSKU, SubMatrixSKU
