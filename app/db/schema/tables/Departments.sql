-- Departments of the store. Row 1 is the base department. One that has items, or in which something was sold, cannot be deleted.
CREATE TABLE Departments (
  DepartmentID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_Departments PRIMARY KEY,
  Department varchar(50) NOT NULL CONSTRAINT DF_Departments_Name DEFAULT 'Department'
)
