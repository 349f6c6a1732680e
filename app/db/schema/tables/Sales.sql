-- Sale events: from one day to another, both inclusive, the item sells at SalePrice.
CREATE TABLE Sales (
  ID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_Sales PRIMARY KEY,
  SKU varchar(100) NOT NULL,
  MatrixSKU varchar(100) NOT NULL,
  DateFrom datetime NOT NULL CONSTRAINT DF_Sales_From DEFAULT GETDATE(),
  DateTo datetime NOT NULL CONSTRAINT DF_Sales_To DEFAULT GETDATE(),
  SalePrice money NOT NULL CONSTRAINT DF_Sales_Price DEFAULT 0,
  CONSTRAINT FK_Sales_Item FOREIGN KEY (SKU, MatrixSKU) REFERENCES Item (SKU, MatrixSKU) ON DELETE CASCADE
)
CREATE INDEX IX_Sales_Item ON Sales (SKU, MatrixSKU)
