-- What to offer instead of an item, by priority, 1 first.
CREATE TABLE ItemSubstitutes (
  SKU varchar(100) NOT NULL,
  MatrixSKU varchar(100) NOT NULL,
  SubSKU varchar(100) NOT NULL,
  SubMatrixSKU varchar(100) NOT NULL,
  Priority smallint NOT NULL CONSTRAINT DF_ItemSubstitutes_Priority DEFAULT 1,
  Notes varchar(255) NULL,
  CONSTRAINT PK_ItemSubstitutes PRIMARY KEY (SKU, MatrixSKU, SubSKU, SubMatrixSKU),
  CONSTRAINT FK_ItemSubstitutes_Item FOREIGN KEY (SKU, MatrixSKU) REFERENCES Item (SKU, MatrixSKU) ON DELETE CASCADE
)
CREATE INDEX IX_ItemSubstitutes_Sub ON ItemSubstitutes (SubSKU, SubMatrixSKU)
