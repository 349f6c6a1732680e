-- Changes the row that an item has for a supplier at a cost; supplier and cost themselves may change, too. A receipt or another manager may have changed the row's cost
-- meanwhile: then it is the supplier's row of the same priority, or the only one, and keeps that cost unless another one was asked for. When there is no telling which, nothing is
-- changed and the caller is told.
CREATE PROCEDURE sp_UpdateSupplierMatrixDetail @SKU varchar(100), @MatrixSKU varchar(100), @OldSupID smallint, @OldCost money,
  @SupID smallint, @Cost money, @MinOrder smallint, @Priority smallint, @PartNo varchar(50) AS
DECLARE @now money, @rows int
IF NOT EXISTS (SELECT * FROM SupplierMatrixDetail WHERE SKU = @SKU AND MatrixSKU = @MatrixSKU AND SupID = @OldSupID AND Cost = @OldCost)
BEGIN
  SELECT @now = MIN(Cost), @rows = COUNT(*) FROM SupplierMatrixDetail WHERE SKU = @SKU AND MatrixSKU = @MatrixSKU AND SupID = @OldSupID AND Priority = @Priority
  IF @rows = 0
    SELECT @now = MIN(Cost), @rows = COUNT(*) FROM SupplierMatrixDetail WHERE SKU = @SKU AND MatrixSKU = @MatrixSKU AND SupID = @OldSupID
  IF @rows <> 1
  BEGIN
    RAISERROR('The supplier''s row of the item %s was changed or deleted by someone else meanwhile. Take the row away, add it again and save.', 16, 1, @MatrixSKU)
    RETURN
  END
  IF @SupID = @OldSupID AND @Cost = @OldCost
    SET @Cost = @now
  SET @OldCost = @now
END
UPDATE SupplierMatrixDetail
SET SupID = @SupID, Cost = @Cost, MinOrder = @MinOrder, Priority = @Priority, PartNo = @PartNo
WHERE SKU = @SKU AND MatrixSKU = @MatrixSKU AND SupID = @OldSupID AND Cost = @OldCost
