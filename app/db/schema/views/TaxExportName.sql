-- What a tax class is called in accounting: leading blanks and runs of blanks are lost there, and what goes beyond 31 characters.
CREATE VIEW TaxExportName AS
SELECT TaxID, LEFT(REPLACE(REPLACE(REPLACE(REPLACE(REPLACE(LTRIM(Description), '  ', ' '), '   ', ' '), '   ', ' '), '  ', ' '), '  ', ' '), 31) AS ExportName
FROM TaxDef
