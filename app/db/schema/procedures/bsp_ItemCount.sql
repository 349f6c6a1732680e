-- How many items a department or a tax class has ('Department' or 'TaxClass').
CREATE PROCEDURE bsp_ItemCount @What varchar(20), @ID int AS
IF @What = 'Department'
  SELECT COUNT(*) AS Items FROM Item WHERE DepartmentID = @ID
ELSE
  SELECT COUNT(*) AS Items FROM Item WHERE TaxID = @ID
