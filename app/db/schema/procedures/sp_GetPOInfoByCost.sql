-- What to order of an item and from whom, the cheapest supplier first, ties by priority. How much: as bsp_POInfo tells.
CREATE PROCEDURE sp_GetPOInfoByCost @SKU varchar(100), @MatrixSKU varchar(100), @Wanted int AS
EXEC bsp_POInfo @SKU, @MatrixSKU, @Wanted, 1
