-- The key of a category by its name in a group.
CREATE PROCEDURE bsp_CategoryIDLookup @categname varchar(255), @groupid int AS
SELECT CategoryID FROM ItemMatrixCategories WHERE CategoryName = @categname AND GroupID = @groupid
