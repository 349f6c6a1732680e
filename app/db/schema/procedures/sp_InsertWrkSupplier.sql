-- A supplier chosen for an order run; one chosen already stays so.
CREATE PROCEDURE sp_InsertWrkSupplier @SupID smallint AS
IF NOT EXISTS (SELECT * FROM wrkPOSuppliers WHERE SupID = @SupID)
  INSERT INTO wrkPOSuppliers (SupID) VALUES (@SupID)
