-- Freight and other costs of an order that a receipt spreads over its lines.
CREATE TABLE PurchaseOrderCost (
  CostID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_PurchaseOrderCost PRIMARY KEY,
  POID int NOT NULL CONSTRAINT FK_PurchaseOrderCost_Order REFERENCES PurchaseOrder (POID) ON DELETE CASCADE,
  Amount money NOT NULL CONSTRAINT DF_PurchaseOrderCost_Amount DEFAULT 0,
  Description varchar(255) NULL,
  PostDate datetime NOT NULL CONSTRAINT DF_PurchaseOrderCost_Date DEFAULT GETDATE()
)
CREATE INDEX IX_PurchaseOrderCost_Order ON PurchaseOrderCost (POID)
