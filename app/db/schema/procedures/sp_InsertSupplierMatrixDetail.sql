-- Who else delivers an item, at what cost.
CREATE PROCEDURE sp_InsertSupplierMatrixDetail @SKU varchar(100), @MatrixSKU varchar(100), @SupID smallint, @Cost money, @MinOrder smallint,
  @Priority smallint, @PartNo varchar(50) AS
INSERT INTO SupplierMatrixDetail (SKU, MatrixSKU, SupID, Cost, MinOrder, Priority, PartNo)
VALUES (@SKU, @MatrixSKU, @SupID, @Cost, @MinOrder, @Priority, @PartNo)
