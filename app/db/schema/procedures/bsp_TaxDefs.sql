-- The tax classes, the base class first, updatable.
CREATE PROCEDURE bsp_TaxDefs AS
SELECT TaxID, Amt, Description FROM TaxDef ORDER BY TaxID
