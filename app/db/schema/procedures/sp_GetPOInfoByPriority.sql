-- What to order of an item and from whom, the first priority first, ties by cost. How much: as bsp_POInfo tells.
CREATE PROCEDURE sp_GetPOInfoByPriority @SKU varchar(100), @MatrixSKU varchar(100), @Wanted int AS
EXEC bsp_POInfo @SKU, @MatrixSKU, @Wanted, 0
