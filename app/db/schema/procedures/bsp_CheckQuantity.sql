-- The one guard of quantities: those of orders are 16-bit numbers, and an order run reckons with no others. Returns 0 for such a number; for any other an error that names the item, and 1.
CREATE PROCEDURE bsp_CheckQuantity @MatrixSKU varchar(100), @Quantity int, @What varchar(100) AS
IF @Quantity IS NULL OR @Quantity BETWEEN -32768 AND 32767
  RETURN 0
RAISERROR('Overflow: %s of the item %s, %d, is beyond the 32767 pieces that orders reckon with.', 16, 1, @What, @MatrixSKU, @Quantity)
RETURN 1
