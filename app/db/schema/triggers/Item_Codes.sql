-- A code with "|" or with a blank at either end could never be opened again: screens join both codes with "|", and texts are compared without blanks at their end. Codes that
-- begin with "$" are the registers' own and are refused where screens make items (see bsp_NewItem).
CREATE TRIGGER Item_Codes ON Item AFTER INSERT, UPDATE AS
BEGIN
  SET NOCOUNT ON
  IF NOT UPDATE(SKU) AND NOT UPDATE(MatrixSKU)
    RETURN
  DECLARE @code varchar(100)
  SELECT TOP 1 @code = CASE WHEN SKU LIKE '%|%' OR SKU LIKE ' %' OR DATALENGTH(SKU) <> DATALENGTH(RTRIM(SKU)) THEN SKU ELSE MatrixSKU END FROM inserted
    WHERE (SKU LIKE '%|%' OR SKU LIKE ' %' OR DATALENGTH(SKU) <> DATALENGTH(RTRIM(SKU))
        OR MatrixSKU LIKE '%|%' OR MatrixSKU LIKE ' %' OR DATALENGTH(MatrixSKU) <> DATALENGTH(RTRIM(MatrixSKU)))
  IF @code IS NULL
    RETURN
  ROLLBACK TRANSACTION
  RAISERROR('The code "%s" cannot be used for an item: a code holds no "|" and neither begins nor ends with a blank.', 16, 1, @code)
END
