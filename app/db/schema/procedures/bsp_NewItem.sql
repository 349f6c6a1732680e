-- Makes an item of the default tax class with its stock row and its retail price row; cnt is 1 when it was made, 0 when the key is taken. Codes that begin with "$" are the registers' own.
CREATE PROCEDURE bsp_NewItem @SKU varchar(100), @MatrixSKU varchar(100) AS
BEGIN
  SET NOCOUNT ON
  SET XACT_ABORT ON
  IF EXISTS (SELECT * FROM Item WHERE SKU = @SKU AND MatrixSKU = @MatrixSKU)
  BEGIN
    SELECT 0 AS cnt
    RETURN
  END
  IF @SKU LIKE '$%' OR @MatrixSKU LIKE '$%'
  BEGIN
    RAISERROR('"$" begins the codes of the registers'' own items.', 16, 1)
    RETURN
  END
  BEGIN TRANSACTION
  INSERT INTO Item (SKU, MatrixSKU) VALUES (@SKU, @MatrixSKU)
  EXEC bsp_GiveDefaultTax @SKU, @MatrixSKU
  INSERT INTO Stock (SKU, MatrixSKU, Quantity) VALUES (@SKU, @MatrixSKU, 0)
  INSERT INTO PriceMatrix (SKU, MatrixSKU, Tier, Quantity) VALUES (@SKU, @MatrixSKU, 1, 1)
  COMMIT TRANSACTION
  SELECT COUNT(*) AS cnt FROM Item WHERE SKU = @SKU AND MatrixSKU = @MatrixSKU
END
