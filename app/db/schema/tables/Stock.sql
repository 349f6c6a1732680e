-- What is on the shelf, one row an item. QtyCommitt is promised to layaways and orders of customers.
CREATE TABLE Stock (
  SKU varchar(100) NOT NULL,
  MatrixSKU varchar(100) NOT NULL,
  Quantity int NOT NULL CONSTRAINT DF_Stock_Quantity DEFAULT 0,
  QtyCommitt int NOT NULL CONSTRAINT DF_Stock_Committed DEFAULT 0,
  CONSTRAINT PK_Stock PRIMARY KEY (SKU, MatrixSKU),
  CONSTRAINT FK_Stock_Item FOREIGN KEY (SKU, MatrixSKU) REFERENCES Item (SKU, MatrixSKU) ON DELETE CASCADE
)
