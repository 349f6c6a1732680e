-- Orders to suppliers. PONumber is the store's own number, given when the order is complete. Status: O open, P partial, C closed.
CREATE TABLE PurchaseOrder (
  POID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_PurchaseOrder PRIMARY KEY,
  PONumber int NULL,
  SupID smallint NOT NULL CONSTRAINT DF_PurchaseOrder_Supplier DEFAULT 0 CONSTRAINT FK_PurchaseOrder_Suppliers REFERENCES Suppliers (SupID),
  PODate datetime NOT NULL CONSTRAINT DF_PurchaseOrder_Date DEFAULT GETDATE(),
  Status char(1) NOT NULL CONSTRAINT DF_PurchaseOrder_Status DEFAULT 'O' CONSTRAINT CK_PurchaseOrder_Status CHECK (Status IN ('O', 'P', 'C'))
)
CREATE INDEX IX_PurchaseOrder_Number ON PurchaseOrder (PONumber)
CREATE INDEX IX_PurchaseOrder_Supplier ON PurchaseOrder (SupID)
