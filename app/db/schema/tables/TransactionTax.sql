-- Tax of a transaction by class.
CREATE TABLE TransactionTax (
  TransactionNumber int NOT NULL CONSTRAINT FK_TransactionTax_Transaction REFERENCES [Transaction] (TransactionNumber),
  TaxID smallint NOT NULL,
  Taxable money NOT NULL CONSTRAINT DF_TransactionTax_Taxable DEFAULT 0,
  Amount money NOT NULL CONSTRAINT DF_TransactionTax_Amount DEFAULT 0,
  CONSTRAINT PK_TransactionTax PRIMARY KEY (TransactionNumber, TaxID)
)
