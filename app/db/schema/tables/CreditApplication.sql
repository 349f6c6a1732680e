-- What was taken off a posting's outstanding balance by applying credits to debits, with the posting's sign, and when. A credit and a debit are applied one after the
-- other: until the parts of a batch add up to nothing, they are Pending, and an open row of the account holds their sum; see sp_PostAppliedAmount.
CREATE TABLE CreditApplication (
  ApplicationID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_CreditApplication PRIMARY KEY,
  BatchNumber int NOT NULL CONSTRAINT FK_CreditApplication_batch REFERENCES batch (BatchNumber),
  CustomerID int NOT NULL CONSTRAINT FK_CreditApplication_Customer REFERENCES Customer (ID),
  CreditTransID int NOT NULL CONSTRAINT FK_CreditApplication_Posting REFERENCES CreditTransaction (CreditTransID),
  CashierID int NOT NULL CONSTRAINT DF_CreditApplication_Cashier DEFAULT 5 CONSTRAINT FK_CreditApplication_Cashier REFERENCES Cashier (ID),
  Time datetime NOT NULL CONSTRAINT DF_CreditApplication_Time DEFAULT GETDATE(),
  Amount money NOT NULL,
  Pending bit NOT NULL CONSTRAINT DF_CreditApplication_Pending DEFAULT 1
)
CREATE INDEX IX_CreditApplication_Batch ON CreditApplication (BatchNumber, CustomerID)
CREATE INDEX IX_CreditApplication_Customer ON CreditApplication (CustomerID)
CREATE INDEX IX_CreditApplication_Posting ON CreditApplication (CreditTransID)
CREATE INDEX IX_CreditApplication_Cashier ON CreditApplication (CashierID)
