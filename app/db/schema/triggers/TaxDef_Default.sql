-- One class is the default: the one that was made it last, or the base class when no other is.
CREATE TRIGGER TaxDef_Default ON TaxDef AFTER INSERT, UPDATE, DELETE AS
BEGIN
  SET NOCOUNT ON
  DECLARE @default smallint
  SELECT @default = MAX(i.TaxID) FROM inserted i LEFT JOIN deleted d ON d.TaxID = i.TaxID WHERE i.DefaultTax = 1 AND ISNULL(d.DefaultTax, 0) = 0
  IF @default IS NULL AND NOT EXISTS (SELECT * FROM TaxDef WHERE DefaultTax = 1)
    SET @default = 0
  IF @default IS NULL
    RETURN
  UPDATE TaxDef SET DefaultTax = 0 WHERE DefaultTax = 1 AND TaxID <> @default
  UPDATE TaxDef SET DefaultTax = 1 WHERE DefaultTax = 0 AND TaxID = @default
END
