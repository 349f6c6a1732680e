-- What was sold at a rate keeps it: before a class changes its rate or goes, the old rate is written to the receipts that do not tell theirs.
CREATE TRIGGER TaxDef_Rate ON TaxDef AFTER UPDATE, DELETE AS
BEGIN
  SET NOCOUNT ON
  IF NOT EXISTS (SELECT * FROM deleted d LEFT JOIN inserted i ON i.TaxID = d.TaxID WHERE i.TaxID IS NULL OR i.Amt <> d.Amt)
    RETURN
  UPDATE TransactionTax SET Rate = (SELECT d.Amt FROM deleted d WHERE d.TaxID = TransactionTax.TaxID)
    WHERE Rate IS NULL AND TaxID IN (SELECT d.TaxID FROM deleted d LEFT JOIN inserted i ON i.TaxID = d.TaxID WHERE i.TaxID IS NULL OR i.Amt <> d.Amt)
END
