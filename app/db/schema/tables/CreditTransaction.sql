-- Postings to a customer's account: positive what the customer owes, negative what is owed to the customer. OutstandingBalance is the part not yet matched.
CREATE TABLE CreditTransaction (
  CreditTransID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_CreditTransaction PRIMARY KEY,
  TransactionNumber int NULL,
  BatchNumber int NULL CONSTRAINT FK_CreditTransaction_batch REFERENCES batch (BatchNumber),
  StoreID int NOT NULL CONSTRAINT DF_CreditTransaction_Store DEFAULT 1,
  CustomerID int NOT NULL CONSTRAINT FK_CreditTransaction_Customer REFERENCES Customer (ID),
  CashierID int NOT NULL CONSTRAINT DF_CreditTransaction_Cashier DEFAULT 5 CONSTRAINT FK_CreditTransaction_Cashier REFERENCES Cashier (ID),
  CreditID smallint NOT NULL CONSTRAINT DF_CreditTransaction_Code DEFAULT 1,
  CreditCode varchar(25) NOT NULL CONSTRAINT DF_CreditTransaction_CodeText DEFAULT '',
  Time datetime NOT NULL CONSTRAINT DF_CreditTransaction_Time DEFAULT GETDATE(),
  PastDueDate datetime NULL,
  Total money NOT NULL CONSTRAINT DF_CreditTransaction_Total DEFAULT 0,
  OutstandingBalance money NOT NULL CONSTRAINT DF_CreditTransaction_Balance DEFAULT 0
)
CREATE INDEX IX_CreditTransaction_Customer ON CreditTransaction (CustomerID)
CREATE INDEX IX_CreditTransaction_Cashier ON CreditTransaction (CashierID)
CREATE INDEX IX_CreditTransaction_Batch ON CreditTransaction (BatchNumber)
