-- Serial numbers of the units on hand. A locked one belongs to a sale that is not finished.
CREATE TABLE StockSerials (
  StockSerialID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_StockSerials PRIMARY KEY,
  SKU varchar(100) NOT NULL,
  MatrixSKU varchar(100) NOT NULL,
  SerialNo varchar(100) NOT NULL CONSTRAINT DF_StockSerials_No DEFAULT '',
  LockedFlag bit NOT NULL CONSTRAINT DF_StockSerials_Locked DEFAULT 0,
  CONSTRAINT FK_StockSerials_Item FOREIGN KEY (SKU, MatrixSKU) REFERENCES Item (SKU, MatrixSKU) ON DELETE CASCADE
)
CREATE UNIQUE INDEX UX_StockSerials_SerialNo ON StockSerials (SerialNo)
CREATE INDEX IX_StockSerials_Item ON StockSerials (SKU, MatrixSKU)
