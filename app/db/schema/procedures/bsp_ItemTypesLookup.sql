-- The kinds of item, for a list.
CREATE PROCEDURE bsp_ItemTypesLookup AS
SELECT Description, TypeId AS TypeID FROM ItemTypes ORDER BY TypeId
