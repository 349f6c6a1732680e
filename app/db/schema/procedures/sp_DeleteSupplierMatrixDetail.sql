-- An item is no longer bought from a supplier at this cost.
CREATE PROCEDURE sp_DeleteSupplierMatrixDetail @SKU varchar(100), @MatrixSKU varchar(100), @OldSupID smallint, @OldCost money AS
DELETE FROM SupplierMatrixDetail WHERE SKU = @SKU AND MatrixSKU = @MatrixSKU AND SupID = @OldSupID AND Cost = @OldCost
