-- How a transaction was paid; change given back is a negative amount.
CREATE TABLE TransactionTender (
  TenderID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_TransactionTender PRIMARY KEY,
  TransactionNumber int NOT NULL CONSTRAINT FK_TransactionTender_Transaction REFERENCES [Transaction] (TransactionNumber),
  TenderType varchar(50) NOT NULL CONSTRAINT DF_TransactionTender_Type DEFAULT 'Cash',
  Amount money NOT NULL CONSTRAINT DF_TransactionTender_Amount DEFAULT 0,
  Reference varchar(50) NULL
)
CREATE INDEX IX_TransactionTender_Transaction ON TransactionTender (TransactionNumber)
