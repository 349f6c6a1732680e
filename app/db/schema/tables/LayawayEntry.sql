-- What a layaway holds; goes with it.
CREATE TABLE LayawayEntry (
  LayawayEntryID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_LayawayEntry PRIMARY KEY,
  LayawayID int NOT NULL CONSTRAINT FK_LayawayEntry_Layaway REFERENCES Layaway (LayawayID) ON DELETE CASCADE,
  SKU varchar(100) NOT NULL,
  MatrixSKU varchar(100) NOT NULL,
  Quantity int NOT NULL CONSTRAINT DF_LayawayEntry_Quantity DEFAULT 1,
  Price money NOT NULL CONSTRAINT DF_LayawayEntry_Price DEFAULT 0,
  CONSTRAINT FK_LayawayEntry_Item FOREIGN KEY (SKU, MatrixSKU) REFERENCES Item (SKU, MatrixSKU)
)
CREATE INDEX IX_LayawayEntry_Layaway ON LayawayEntry (LayawayID)
CREATE INDEX IX_LayawayEntry_Item ON LayawayEntry (SKU, MatrixSKU)
