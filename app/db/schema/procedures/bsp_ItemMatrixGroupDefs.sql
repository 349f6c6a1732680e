-- The matrix groups, oldest first, updatable.
CREATE PROCEDURE bsp_ItemMatrixGroupDefs AS
SELECT GroupID, GroupName FROM ItemMatrixGroups ORDER BY GroupID
