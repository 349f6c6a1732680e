-- An item that is sold from broken packs of another: so many pieces make one of the parent.
CREATE TABLE ItemSplitMatrix (
  SKU varchar(100) NOT NULL,
  MatrixSKU varchar(100) NOT NULL,
  SplitParentSKU varchar(100) NOT NULL,
  SplitParentMatrixSKU varchar(100) NOT NULL,
  SplitQuantity float NOT NULL CONSTRAINT DF_ItemSplitMatrix_Quantity DEFAULT 1,
  CONSTRAINT PK_ItemSplitMatrix PRIMARY KEY (SKU, MatrixSKU),
  CONSTRAINT FK_ItemSplitMatrix_Item FOREIGN KEY (SKU, MatrixSKU) REFERENCES Item (SKU, MatrixSKU) ON DELETE CASCADE
)
