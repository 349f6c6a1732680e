-- The matrix groups by name, for a list.
CREATE PROCEDURE bsp_ItemGroupDefsLookup AS
SELECT GroupName, GroupID FROM ItemMatrixGroups ORDER BY GroupName, GroupID
