-- Groups of matrix categories, such as size and colour.
CREATE TABLE ItemMatrixGroups (
  GroupID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_ItemMatrixGroups PRIMARY KEY,
  GroupName varchar(255) NOT NULL CONSTRAINT DF_ItemMatrixGroups_Name DEFAULT 'Edit this Group Name'
)
