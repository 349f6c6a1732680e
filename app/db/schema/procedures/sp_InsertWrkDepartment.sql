-- A department chosen for an order run; one chosen already stays so.
CREATE PROCEDURE sp_InsertWrkDepartment @DepartmentID int AS
IF NOT EXISTS (SELECT * FROM wrkPODepartments WHERE DepartmentID = @DepartmentID)
  INSERT INTO wrkPODepartments (DepartmentID) VALUES (@DepartmentID)
