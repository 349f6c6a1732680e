-- Every supplier but the Empty one takes part in an order run.
CREATE PROCEDURE sp_InsertAllSuppliers AS
INSERT INTO wrkPOSuppliers (SupID) SELECT SupID FROM Suppliers WHERE SupID <> 0 AND SupID NOT IN (SELECT SupID FROM wrkPOSuppliers)
