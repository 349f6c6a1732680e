-- The categories of a matrix group, updatable.
CREATE PROCEDURE bsp_ItemCategorysLookup @GroupID int AS
SELECT GroupID, CategoryName, CategoryID FROM ItemMatrixCategories WHERE GroupID = @GroupID ORDER BY CategoryName, CategoryID
