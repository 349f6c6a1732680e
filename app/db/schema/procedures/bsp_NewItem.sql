-- Makes an item with its stock row and its retail price row; cnt is 1 when it was made, 0 when the key is taken.
CREATE PROCEDURE bsp_NewItem @SKU varchar(100), @MatrixSKU varchar(100) AS
BEGIN
  SET NOCOUNT ON
  IF EXISTS (SELECT * FROM Item WHERE SKU = @SKU AND MatrixSKU = @MatrixSKU)
  BEGIN
    SELECT 0 AS cnt
    RETURN
  END
  BEGIN TRANSACTION
  INSERT INTO Item (SKU, MatrixSKU) VALUES (@SKU, @MatrixSKU)
  INSERT INTO Stock (SKU, MatrixSKU, Quantity) VALUES (@SKU, @MatrixSKU, 0)
  INSERT INTO PriceMatrix (SKU, MatrixSKU, Tier, Quantity) VALUES (@SKU, @MatrixSKU, 1, 1)
  COMMIT TRANSACTION
  SELECT COUNT(*) AS cnt FROM Item WHERE SKU = @SKU AND MatrixSKU = @MatrixSKU
END
