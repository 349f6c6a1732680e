-- The report file that prints labels of a size for what a delivery just brought; its first parameter is the order's number.
CREATE PROCEDURE sp_GetRcptReport @Printer varchar(100) AS
SELECT Report AS RcptReport FROM LabelReports WHERE Printer = @Printer AND Quantity = 'Receipt'
