-- The label sizes and printers for which there is a report file.
CREATE PROCEDURE sp_GetLabelPrinters AS
SELECT Printer FROM LabelReports GROUP BY Printer ORDER BY MIN(position)
