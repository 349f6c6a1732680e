-- Lines of an order. Open is Qty less QtyRecvd less QtyCanceled.
CREATE TABLE PurchaseOrderItem (
  POID int NOT NULL CONSTRAINT FK_PurchaseOrderItem_Order REFERENCES PurchaseOrder (POID) ON DELETE CASCADE,
  SKU varchar(100) NOT NULL,
  MatrixSKU varchar(100) NOT NULL,
  Qty smallint NOT NULL CONSTRAINT DF_PurchaseOrderItem_Qty DEFAULT 0,
  Cost money NOT NULL CONSTRAINT DF_PurchaseOrderItem_Cost DEFAULT 0,
  PartNo varchar(50) NULL,
  QtyRecvd smallint NOT NULL CONSTRAINT DF_PurchaseOrderItem_Received DEFAULT 0,
  QtyCanceled smallint NOT NULL CONSTRAINT DF_PurchaseOrderItem_Canceled DEFAULT 0,
  CONSTRAINT PK_PurchaseOrderItem PRIMARY KEY (POID, SKU, MatrixSKU),
  CONSTRAINT FK_PurchaseOrderItem_Item FOREIGN KEY (SKU, MatrixSKU) REFERENCES Item (SKU, MatrixSKU)
)
CREATE INDEX IX_PurchaseOrderItem_Item ON PurchaseOrderItem (SKU, MatrixSKU)
