-- One supplier's row, updatable.
CREATE PROCEDURE bsp_Supplier @SupID int AS
SELECT * FROM Suppliers WHERE SupID = @SupID
