-- The class that new items get.
CREATE PROCEDURE bsp_DefaultTax AS
SELECT TOP 1 TaxID, Description FROM TaxDef WHERE DefaultTax = 1 ORDER BY TaxID
