-- One line of a transaction. FullPrice is the price of a piece charged, Cost its weighted cost then. Items that stand here cannot be deleted.
CREATE TABLE TransactionEntry (
  EntryID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_TransactionEntry PRIMARY KEY,
  TransactionNumber int NOT NULL CONSTRAINT FK_TransactionEntry_Transaction REFERENCES [Transaction] (TransactionNumber),
  SKU varchar(100) NOT NULL,
  MatrixSKU varchar(100) NOT NULL,
  Quantity int NOT NULL CONSTRAINT DF_TransactionEntry_Quantity DEFAULT 1,
  FullPrice money NOT NULL CONSTRAINT DF_TransactionEntry_Price DEFAULT 0,
  Cost money NOT NULL CONSTRAINT DF_TransactionEntry_Cost DEFAULT 0,
  Discount money NOT NULL CONSTRAINT DF_TransactionEntry_Discount DEFAULT 0,
  TaxID smallint NOT NULL CONSTRAINT DF_TransactionEntry_Tax DEFAULT 0,
  Tax money NOT NULL CONSTRAINT DF_TransactionEntry_TaxAmount DEFAULT 0,
  DepartmentID int NULL,
  SerialNo varchar(100) NULL,
  CONSTRAINT FK_TransactionEntry_Item FOREIGN KEY (SKU, MatrixSKU) REFERENCES Item (SKU, MatrixSKU)
)
CREATE INDEX IX_TransactionEntry_Transaction ON TransactionEntry (TransactionNumber)
CREATE INDEX IX_TransactionEntry_Item ON TransactionEntry (SKU, MatrixSKU)
