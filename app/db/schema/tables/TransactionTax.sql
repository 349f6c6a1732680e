-- Tax of a transaction by class. Rate is that of the class at the time of the sale, in percent; null stands for the class's present one (see the trigger TaxDef_Rate).
CREATE TABLE TransactionTax (
  TransactionNumber int NOT NULL CONSTRAINT FK_TransactionTax_Transaction REFERENCES [Transaction] (TransactionNumber),
  TaxID smallint NOT NULL,
  Taxable money NOT NULL CONSTRAINT DF_TransactionTax_Taxable DEFAULT 0,
  Amount money NOT NULL CONSTRAINT DF_TransactionTax_Amount DEFAULT 0,
  Rate float NULL,
  CONSTRAINT PK_TransactionTax PRIMARY KEY (TransactionNumber, TaxID)
)
