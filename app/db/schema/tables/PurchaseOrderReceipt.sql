-- Deliveries posted: the lines of one posting share ReceiptNumber. OtherCost is the line's share of other costs.
CREATE TABLE PurchaseOrderReceipt (
  ReceiptLineID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_PurchaseOrderReceipt PRIMARY KEY,
  ReceiptNumber int NOT NULL,
  POID int NOT NULL CONSTRAINT FK_PurchaseOrderReceipt_Order REFERENCES PurchaseOrder (POID) ON DELETE CASCADE,
  SKU varchar(100) NOT NULL,
  MatrixSKU varchar(100) NOT NULL,
  Quantity smallint NOT NULL CONSTRAINT DF_PurchaseOrderReceipt_Quantity DEFAULT 0,
  Cost money NOT NULL CONSTRAINT DF_PurchaseOrderReceipt_Cost DEFAULT 0,
  OtherCost money NOT NULL CONSTRAINT DF_PurchaseOrderReceipt_Other DEFAULT 0,
  CostID int NULL,
  PostDate datetime NOT NULL CONSTRAINT DF_PurchaseOrderReceipt_Date DEFAULT GETDATE(),
  CONSTRAINT FK_PurchaseOrderReceipt_Item FOREIGN KEY (SKU, MatrixSKU) REFERENCES Item (SKU, MatrixSKU)
)
CREATE INDEX IX_PurchaseOrderReceipt_Order ON PurchaseOrderReceipt (POID)
CREATE INDEX IX_PurchaseOrderReceipt_Item ON PurchaseOrderReceipt (SKU, MatrixSKU)
