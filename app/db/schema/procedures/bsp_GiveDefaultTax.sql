-- A new item belongs to the default tax class. Serialized items are never taxed.
CREATE PROCEDURE bsp_GiveDefaultTax @SKU varchar(100), @MatrixSKU varchar(100) AS
UPDATE Item SET TaxID = ISNULL((SELECT MAX(TaxID) FROM TaxDef WHERE DefaultTax = 1), 0) WHERE SKU = @SKU AND MatrixSKU = @MatrixSKU AND TypeID <> 5
