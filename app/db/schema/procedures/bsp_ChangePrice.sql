-- Writes one price, unless it is no longer what it was; Changed is 1 when it was written, else 0. With the key of a change the old price is
-- kept there.
CREATE PROCEDURE bsp_ChangePrice @PriceChangeID int, @SKU varchar(100), @MatrixSKU varchar(100), @Tier int, @Quantity float, @OldPrice money,
  @NewPrice money AS
BEGIN
  SET NOCOUNT ON
  UPDATE PriceMatrix SET Price = @NewPrice
  WHERE SKU = @SKU AND MatrixSKU = @MatrixSKU AND Tier = @Tier AND Quantity = @Quantity AND Price = @OldPrice
  IF @@ROWCOUNT = 0
  BEGIN
    SELECT 0 AS Changed
    RETURN
  END
  IF @PriceChangeID IS NOT NULL
    INSERT INTO PriceChangeItem (PriceChangeID, SKU, MatrixSKU, Tier, Quantity, OldPrice, NewPrice)
    VALUES (@PriceChangeID, @SKU, @MatrixSKU, @Tier, @Quantity, @OldPrice, @NewPrice)
  SELECT 1 AS Changed
END
