-- Who delivers an item at what cost: one row per item, supplier and cost. They go with their supplier and with their item.
CREATE TABLE SupplierMatrixDetail (
  SKU varchar(100) NOT NULL,
  MatrixSKU varchar(100) NOT NULL,
  SupID smallint NOT NULL CONSTRAINT FK_SupplierMatrixDetail_Suppliers REFERENCES Suppliers (SupID) ON DELETE CASCADE,
  Cost money NOT NULL CONSTRAINT DF_SupplierMatrixDetail_Cost DEFAULT 0,
  MinOrder smallint NULL CONSTRAINT DF_SupplierMatrixDetail_MinOrder DEFAULT 1,
  PartNo varchar(50) NULL,
  Priority smallint NULL CONSTRAINT DF_SupplierMatrixDetail_Priority DEFAULT 1,
  CONSTRAINT PK_SupplierMatrixDetail PRIMARY KEY (SKU, MatrixSKU, SupID, Cost),
  CONSTRAINT FK_SupplierMatrixDetail_Item FOREIGN KEY (SKU, MatrixSKU) REFERENCES Item (SKU, MatrixSKU) ON DELETE CASCADE
)
CREATE INDEX IX_SupplierMatrixDetail_Supplier ON SupplierMatrixDetail (SupID)
