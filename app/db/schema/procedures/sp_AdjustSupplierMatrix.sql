-- Remembers for an item what an order paid: cost and part number of the supplier's row whose minimum order the quantity reaches (the largest such, else the
-- smallest), or a new row behind the others when the supplier has none. A row that has the cost already takes the part number alone.
CREATE PROCEDURE sp_AdjustSupplierMatrix @SKU varchar(100), @MatrixSKU varchar(100), @SupID smallint, @Cost money, @Quantity int, @PartNo varchar(50) AS
SET NOCOUNT ON
DECLARE @old money
IF EXISTS (SELECT * FROM SupplierMatrixDetail WHERE SKU = @SKU AND MatrixSKU = @MatrixSKU AND SupID = @SupID AND Cost = @Cost)
BEGIN
  UPDATE SupplierMatrixDetail SET PartNo = @PartNo WHERE SKU = @SKU AND MatrixSKU = @MatrixSKU AND SupID = @SupID AND Cost = @Cost
  RETURN
END
SELECT TOP 1 @old = Cost FROM SupplierMatrixDetail WHERE SKU = @SKU AND MatrixSKU = @MatrixSKU AND SupID = @SupID
  ORDER BY CASE WHEN ISNULL(MinOrder, 0) <= @Quantity THEN 0 ELSE 1 END, CASE WHEN ISNULL(MinOrder, 0) <= @Quantity THEN -ISNULL(MinOrder, 0) ELSE ISNULL(MinOrder, 0) END, Priority
IF @old IS NULL
  INSERT INTO SupplierMatrixDetail (SKU, MatrixSKU, SupID, Cost, MinOrder, Priority, PartNo)
    SELECT @SKU, @MatrixSKU, @SupID, @Cost, 1, ISNULL(MAX(Priority), 0) + 1, @PartNo FROM SupplierMatrixDetail WITH (UPDLOCK, HOLDLOCK) WHERE SKU = @SKU AND MatrixSKU = @MatrixSKU
ELSE
  UPDATE SupplierMatrixDetail SET Cost = @Cost, PartNo = @PartNo WHERE SKU = @SKU AND MatrixSKU = @MatrixSKU AND SupID = @SupID AND Cost = @old
