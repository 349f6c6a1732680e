-- The suppliers of an item in their order of preference, updatable.
CREATE PROCEDURE bsp_SupplierMatrixDetailLookup @SKU varchar(100), @MatrixSKU varchar(100) AS
SELECT d.SKU, d.MatrixSKU, s.Supplier, d.SupID, d.Cost, d.MinOrder, d.PartNo, d.Priority
FROM SupplierMatrixDetail d INNER JOIN Suppliers s ON s.SupID = d.SupID
WHERE d.SKU = @SKU AND d.MatrixSKU = @MatrixSKU
ORDER BY d.Priority, d.SupID, d.Cost
