-- Categories of a group, such as S, M and L; they go with their group.
CREATE TABLE ItemMatrixCategories (
  CategoryID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_ItemMatrixCategories PRIMARY KEY,
  CategoryName varchar(255) NOT NULL CONSTRAINT DF_ItemMatrixCategories_Name DEFAULT 'Edit this Category Name',
  GroupID int NOT NULL CONSTRAINT FK_ItemMatrixCategories_Groups REFERENCES ItemMatrixGroups (GroupID) ON DELETE CASCADE
)
CREATE INDEX IX_ItemMatrixCategories_Group ON ItemMatrixCategories (GroupID)
