-- A code with "|" or with a blank at either end could never be opened again: screens join both codes with "|", and texts are compared without blanks at their end. A tab, a line
-- end and a no-break space look like blanks, and are refused like them. Codes that begin with "$" are the registers' own and are refused where screens make items (see bsp_NewItem).
CREATE TRIGGER Item_Codes ON Item AFTER INSERT, UPDATE AS
BEGIN
  SET NOCOUNT ON
  IF NOT UPDATE(SKU) AND NOT UPDATE(MatrixSKU)
    RETURN
  DECLARE @code varchar(100), @blank varchar(10), @any varchar(20)
  -- Most codes hold none of these: one look at each tells, which counts where many items come at once.
  SET @any = '%[| ' + CHAR(9) + CHAR(10) + CHAR(13) + CHAR(160) + ']%'
  IF NOT EXISTS (SELECT * FROM inserted WHERE MatrixSKU LIKE @any OR SKU LIKE @any)
    RETURN
  SET @blank = '[' + CHAR(9) + CHAR(10) + CHAR(13) + CHAR(160) + ']'
  SELECT TOP 1 @code = Code FROM (SELECT SKU AS Code FROM inserted UNION ALL SELECT MatrixSKU FROM inserted) AS Codes
    WHERE Code LIKE '%|%' OR Code LIKE ' %' OR DATALENGTH(Code) <> DATALENGTH(RTRIM(Code)) OR Code LIKE @blank + '%' OR Code LIKE '%' + @blank
  IF @code IS NULL
    RETURN
  ROLLBACK TRANSACTION
  RAISERROR('The code "%s" cannot be used for an item: a code holds no "|" and neither begins nor ends with a blank.', 16, 1, @code)
END
