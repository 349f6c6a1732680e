-- Items for a lookup. With flags: 1, 0 all; 1, 1 the active ones; 0, 0 the inactive ones. Without flags: what is on hand of all items, for an order.
-- The registers' own pseudo-items are left out.
CREATE PROCEDURE sp_GetAllItems @Flag1 int = NULL, @Flag2 int = NULL AS
IF @Flag1 IS NULL
  SELECT i.MatrixSKU, i.SKU, i.Name, s.Quantity, i.Restock
  FROM Item i LEFT JOIN Stock s ON s.SKU = i.SKU AND s.MatrixSKU = i.MatrixSKU
  WHERE i.SKU NOT LIKE '$%' AND i.TypeID <> 4
  ORDER BY i.SKU, i.MatrixSKU
ELSE IF @Flag1 = 1 AND @Flag2 = 0
  SELECT i.SKU, i.MatrixSKU, i.Name, d.Department
  FROM Item i LEFT JOIN Departments d ON d.DepartmentID = i.DepartmentID
  WHERE i.SKU NOT LIKE '$%'
  ORDER BY i.SKU, i.MatrixSKU
ELSE
  SELECT i.SKU, i.MatrixSKU, i.Name, d.Department
  FROM Item i LEFT JOIN Departments d ON d.DepartmentID = i.DepartmentID
  WHERE i.SKU NOT LIKE '$%' AND i.Active = @Flag1
  ORDER BY i.SKU, i.MatrixSKU
