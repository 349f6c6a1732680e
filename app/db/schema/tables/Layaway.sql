-- Goods put aside for a customer against a deposit. Status: O open, C completed, X cancelled.
CREATE TABLE Layaway (
  LayawayID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_Layaway PRIMARY KEY,
  CustomerID int NOT NULL CONSTRAINT FK_Layaway_Customer REFERENCES Customer (ID),
  TransactionNumber int NULL,
  OpenDate datetime NOT NULL CONSTRAINT DF_Layaway_Open DEFAULT GETDATE(),
  ExpirationDate datetime NULL,
  Total money NOT NULL CONSTRAINT DF_Layaway_Total DEFAULT 0,
  Paid money NOT NULL CONSTRAINT DF_Layaway_Paid DEFAULT 0,
  Status char(1) NOT NULL CONSTRAINT DF_Layaway_Status DEFAULT 'O' CONSTRAINT CK_Layaway_Status CHECK (Status IN ('O', 'C', 'X'))
)
CREATE INDEX IX_Layaway_Customer ON Layaway (CustomerID)
