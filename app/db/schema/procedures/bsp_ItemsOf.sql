-- The items of a department or of a tax class ('Department' or 'TaxClass'), the registers' own among them: they hold a department, too.
CREATE PROCEDURE bsp_ItemsOf @What varchar(20), @ID int AS
IF @What = 'Department'
  SELECT SKU, MatrixSKU, Name, Active FROM Item WHERE DepartmentID = @ID ORDER BY SKU, MatrixSKU
ELSE
  SELECT SKU, MatrixSKU, Name, Active FROM Item WHERE TaxID = @ID ORDER BY SKU, MatrixSKU
