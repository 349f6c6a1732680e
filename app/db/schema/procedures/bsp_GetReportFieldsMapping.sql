-- The columns that the criteria screen offers for a report, in their order. DateConvert 1: the column is a date and is compared by the day.
CREATE PROCEDURE bsp_GetReportFieldsMapping @ReportName varchar(100) AS
SELECT fieldname AS FieldName, fielddescription AS FieldDescription, dateconvert AS DateConvert
FROM reportfieldsmapping WHERE reportname = @ReportName ORDER BY position, fielddescription
