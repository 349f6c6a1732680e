-- Changes the row that an item has for a supplier at a cost; supplier and cost themselves may change, too.
CREATE PROCEDURE sp_UpdateSupplierMatrixDetail @SKU varchar(100), @MatrixSKU varchar(100), @OldSupID smallint, @OldCost money,
  @SupID smallint, @Cost money, @MinOrder smallint, @Priority smallint, @PartNo varchar(50) AS
UPDATE SupplierMatrixDetail
SET SupID = @SupID, Cost = @Cost, MinOrder = @MinOrder, Priority = @Priority, PartNo = @PartNo
WHERE SKU = @SKU AND MatrixSKU = @MatrixSKU AND SupID = @OldSupID AND Cost = @OldCost
