-- The tax classes, the base class first, for a list.
CREATE PROCEDURE bsp_TaxClassLookup AS
SELECT Description, TaxID FROM TaxDef ORDER BY TaxID
