-- Empties the work tables before an order run.
CREATE PROCEDURE sp_POBreakGround AS
SET NOCOUNT ON
DELETE FROM wrkPODepartments
DELETE FROM wrkPOSuppliers
