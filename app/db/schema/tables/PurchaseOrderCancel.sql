-- Open quantities given up: the lines of one posting share CancelNumber.
CREATE TABLE PurchaseOrderCancel (
  CancelLineID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_PurchaseOrderCancel PRIMARY KEY,
  CancelNumber int NOT NULL,
  POID int NOT NULL CONSTRAINT FK_PurchaseOrderCancel_Order REFERENCES PurchaseOrder (POID) ON DELETE CASCADE,
  SKU varchar(100) NOT NULL,
  MatrixSKU varchar(100) NOT NULL,
  Quantity smallint NOT NULL CONSTRAINT DF_PurchaseOrderCancel_Quantity DEFAULT 0,
  PostDate datetime NOT NULL CONSTRAINT DF_PurchaseOrderCancel_Date DEFAULT GETDATE(),
  CONSTRAINT FK_PurchaseOrderCancel_Item FOREIGN KEY (SKU, MatrixSKU) REFERENCES Item (SKU, MatrixSKU)
)
CREATE INDEX IX_PurchaseOrderCancel_Order ON PurchaseOrderCancel (POID)
CREATE INDEX IX_PurchaseOrderCancel_Item ON PurchaseOrderCancel (SKU, MatrixSKU)
