-- The departments by name, for a list.
CREATE PROCEDURE bsp_DepartmentsLookup AS
SELECT Department, DepartmentID FROM Departments ORDER BY Department, DepartmentID
