-- All suppliers by number, updatable; 0 is the Empty Supplier.
CREATE PROCEDURE bsp_Suppliers AS
SELECT SupID, Supplier FROM Suppliers ORDER BY SupID
