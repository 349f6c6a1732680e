-- Which categories an item has; the rows go with their category and with their item.
CREATE TABLE ItemMatrix (
  SKU varchar(100) NOT NULL,
  MatrixSKU varchar(100) NOT NULL,
  CategoryID int NOT NULL CONSTRAINT FK_ItemMatrix_Categories REFERENCES ItemMatrixCategories (CategoryID) ON DELETE CASCADE,
  CONSTRAINT PK_ItemMatrix PRIMARY KEY (SKU, MatrixSKU, CategoryID),
  CONSTRAINT FK_ItemMatrix_Item FOREIGN KEY (SKU, MatrixSKU) REFERENCES Item (SKU, MatrixSKU) ON DELETE CASCADE
)
CREATE INDEX IX_ItemMatrix_Category ON ItemMatrix (CategoryID)
