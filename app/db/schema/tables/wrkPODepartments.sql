-- Departments chosen for an order run.
CREATE TABLE wrkPODepartments (
  DepartmentID int NOT NULL CONSTRAINT PK_wrkPODepartments PRIMARY KEY
)
