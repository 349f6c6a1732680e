-- What a register recorded: a sale, a return, a payment. SubTotal and TaxTotal add up to Total. Customers and cashiers that stand here cannot be deleted.
CREATE TABLE [Transaction] (
  TransactionNumber int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_Transaction PRIMARY KEY,
  StoreID int NOT NULL CONSTRAINT DF_Transaction_Store DEFAULT 1,
  RegisterID smallint NULL CONSTRAINT DF_Transaction_Register DEFAULT 1,
  BatchNumber int NULL,
  CashierID int NULL CONSTRAINT FK_Transaction_Cashier REFERENCES Cashier (ID),
  CustomerID int NULL CONSTRAINT FK_Transaction_Customer REFERENCES Customer (ID),
  Time datetime NOT NULL CONSTRAINT DF_Transaction_Time DEFAULT GETDATE(),
  TransType varchar(20) NOT NULL CONSTRAINT DF_Transaction_Type DEFAULT 'Sale',
  SubTotal money NOT NULL CONSTRAINT DF_Transaction_SubTotal DEFAULT 0,
  TaxTotal money NOT NULL CONSTRAINT DF_Transaction_TaxTotal DEFAULT 0,
  Total money NOT NULL CONSTRAINT DF_Transaction_Total DEFAULT 0,
  TaxExempt bit NOT NULL CONSTRAINT DF_Transaction_TaxExempt DEFAULT 0,
  Comment varchar(255) NULL
)
CREATE INDEX IX_Transaction_Time ON [Transaction] (Time)
CREATE INDEX IX_Transaction_Customer ON [Transaction] (CustomerID)
CREATE INDEX IX_Transaction_Cashier ON [Transaction] (CashierID)
