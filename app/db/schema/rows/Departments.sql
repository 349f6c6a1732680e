-- The department of items without another.
IF NOT EXISTS (SELECT * FROM Departments WHERE DepartmentID = 1)
BEGIN
  SET IDENTITY_INSERT Departments ON
  INSERT INTO Departments (DepartmentID, Department) VALUES (1, 'General')
  SET IDENTITY_INSERT Departments OFF
END
