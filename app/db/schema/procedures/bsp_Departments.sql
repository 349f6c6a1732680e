-- All departments by number, updatable.
CREATE PROCEDURE bsp_Departments AS
SELECT DepartmentID, Department FROM Departments ORDER BY DepartmentID
