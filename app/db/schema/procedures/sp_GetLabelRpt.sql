-- The report file that prints labels of a size by a rule of how many.
CREATE PROCEDURE sp_GetLabelRpt @Printer varchar(100), @Quantity varchar(50) AS
SELECT Report FROM LabelReports WHERE Printer = @Printer AND Quantity = @Quantity
