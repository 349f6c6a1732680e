-- The rules of how many labels an item gets that a user can choose.
CREATE PROCEDURE sp_GetLabelQty AS
SELECT Quantity FROM LabelReports WHERE Quantity <> 'Receipt' GROUP BY Quantity ORDER BY MIN(position)
