-- What the registers sell. The key is the pair: SKU is the parent's code, MatrixSKU the item's own; a plain item has the same in both.
-- True is what the item look-up compares SerialFlag with: the word is no value to a server, but a column of that name is one everywhere.
-- Quantities to reorder are whole pieces. DateLastSold in the year 1900 means never.
CREATE TABLE Item (
  SKU varchar(100) NOT NULL,
  MatrixSKU varchar(100) NOT NULL,
  Name varchar(255) NULL CONSTRAINT DF_Item_Name DEFAULT '',
  Notes text NULL,
  StoreLocation varchar(50) NULL,
  FoodStampFlag bit NOT NULL CONSTRAINT DF_Item_FoodStamp DEFAULT 0,
  SalesMsgID int NOT NULL CONSTRAINT DF_Item_SalesMsg DEFAULT 0 CONSTRAINT FK_Item_SalesMessages REFERENCES SalesMessages (SalesMsgID) ON DELETE SET DEFAULT,
  DepartmentID int NULL CONSTRAINT DF_Item_Department DEFAULT 1 CONSTRAINT FK_Item_Departments REFERENCES Departments (DepartmentID),
  SaleFlag bit NOT NULL CONSTRAINT DF_Item_SaleFlag DEFAULT 0,
  TaxID smallint NOT NULL CONSTRAINT DF_Item_Tax DEFAULT 0 CONSTRAINT FK_Item_TaxDef REFERENCES TaxDef (TaxID) ON DELETE SET DEFAULT,
  TypeID smallint NOT NULL CONSTRAINT DF_Item_Type DEFAULT 6 CONSTRAINT FK_Item_ItemTypes REFERENCES ItemTypes (TypeId),
  Reorder float NOT NULL CONSTRAINT DF_Item_Reorder DEFAULT 0,
  Restock float NOT NULL CONSTRAINT DF_Item_Restock DEFAULT 0,
  TagAlongSKU varchar(100) NULL,
  TagAlongMatrixSKU varchar(100) NULL,
  TagAlongQty float NOT NULL CONSTRAINT DF_Item_TagAlongQty DEFAULT 1,
  BarcodeID varchar(50) NULL,
  DateLastSold datetime NOT NULL CONSTRAINT DF_Item_DateLastSold DEFAULT '1/1/1900',
  MatrixFlag bit NOT NULL CONSTRAINT DF_Item_MatrixFlag DEFAULT 0,
  SerialFlag bit NOT NULL CONSTRAINT DF_Item_Serial DEFAULT 0,
  Active bit NOT NULL CONSTRAINT DF_Item_Active DEFAULT 1,
  [True] AS CAST(1 AS bit),
  CONSTRAINT PK_Item PRIMARY KEY (SKU, MatrixSKU)
)
CREATE INDEX IX_Item_MatrixSKU ON Item (MatrixSKU)
CREATE INDEX IX_Item_Department ON Item (DepartmentID)
CREATE INDEX IX_Item_Type ON Item (TypeID)
CREATE INDEX IX_Item_Tax ON Item (TaxID)
CREATE INDEX IX_Item_SalesMsg ON Item (SalesMsgID)
