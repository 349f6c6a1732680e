-- Tax classes that accounting could not tell apart: the same description more than once.
CREATE PROCEDURE sp_QBGetTaxDefDups AS
SELECT Description, COUNT(*) AS Classes FROM TaxDef GROUP BY Description HAVING COUNT(*) > 1 ORDER BY Description
