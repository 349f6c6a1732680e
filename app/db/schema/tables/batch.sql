-- A batch covers what one cashier posts to accounts in one go; open while Closed is null.
CREATE TABLE batch (
  BatchNumber int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_batch PRIMARY KEY,
  StoreID int NOT NULL CONSTRAINT DF_batch_Store DEFAULT 1,
  CashierID int NOT NULL CONSTRAINT DF_batch_Cashier DEFAULT 5 CONSTRAINT FK_batch_Cashier REFERENCES Cashier (ID),
  RegisterID smallint NULL,
  Opened datetime NOT NULL CONSTRAINT DF_batch_Opened DEFAULT GETDATE(),
  Closed datetime NULL
)
CREATE INDEX IX_batch_Cashier ON batch (CashierID)
