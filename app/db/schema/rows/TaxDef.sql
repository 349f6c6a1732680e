-- The tax class of what is not taxed.
IF NOT EXISTS (SELECT * FROM TaxDef WHERE TaxID = 0)
BEGIN
  SET IDENTITY_INSERT TaxDef ON
  INSERT INTO TaxDef (TaxID, Amt, Description, DefaultTax) VALUES (0, 0, 'None', 1)
  SET IDENTITY_INSERT TaxDef OFF
END
