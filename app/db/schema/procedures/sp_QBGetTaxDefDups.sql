-- Tax classes that accounting could not tell apart, those of one name together.
CREATE PROCEDURE sp_QBGetTaxDefDups AS
SELECT t.TaxID, t.Description, n.ExportName
FROM TaxDef t INNER JOIN TaxExportName n ON n.TaxID = t.TaxID
WHERE EXISTS (SELECT * FROM TaxExportName o WHERE o.ExportName = n.ExportName AND o.TaxID <> n.TaxID)
ORDER BY n.ExportName, t.TaxID
