-- Carries out these rows of an import: items that are new with their price, stock and supplier, and the fields that changed of the others. What the file left alone stays. A stock comes as an
-- adjustment under a reason: the first movement of a new item tells its own balance and average, one of another item is averaged by the ledger's trigger.
CREATE PROCEDURE bsp_ImportItems @ImportID int, @First int, @Last int, @Reason varchar(50) AS
BEGIN
  SET NOCOUNT ON
  DECLARE @tax smallint, @row int, @sku varchar(100), @matrix varchar(100), @old int, @new int, @cost money
  SELECT @tax = ISNULL(MAX(TaxID), 0) FROM TaxDef WHERE DefaultTax = 1
  INSERT INTO Item (SKU, MatrixSKU, Name, DepartmentID, TaxID, Reorder, Restock, Active, Notes)
    SELECT SKU, MatrixSKU, ISNULL(NewName, ''), ISNULL(NewDepartmentID, 1), ISNULL(NewTaxID, @tax), ISNULL(NewReorder, 0), ISNULL(NewRestock, 0), ISNULL(NewActive, 1), NewNotes
      FROM ImportItem WHERE ImportID = @ImportID AND RowNo BETWEEN @First AND @Last AND Made = 1
  INSERT INTO Stock (SKU, MatrixSKU, Quantity)
    SELECT SKU, MatrixSKU, ISNULL(NewStock, 0) FROM ImportItem WHERE ImportID = @ImportID AND RowNo BETWEEN @First AND @Last AND Made = 1
  INSERT INTO PriceMatrix (SKU, MatrixSKU, Tier, Quantity, Price)
    SELECT SKU, MatrixSKU, 1, 1, ISNULL(NewPrice, 0) FROM ImportItem
      WHERE ImportID = @ImportID AND RowNo BETWEEN @First AND @Last AND (Made = 1 OR (NewPrice IS NOT NULL AND OldPrice IS NULL))
  INSERT INTO SupplierMatrixDetail (SKU, MatrixSKU, SupID, Cost, MinOrder, Priority, PartNo)
    SELECT r.SKU, r.MatrixSKU, r.SupID, ISNULL(r.NewCost, 0), 1,
        CASE WHEN r.Made = 1 THEN 1 ELSE ISNULL((SELECT MAX(d.Priority) FROM SupplierMatrixDetail d WHERE d.SKU = r.SKU AND d.MatrixSKU = r.MatrixSKU), 0) + 1 END, r.NewPartNo
      FROM ImportItem r WHERE r.ImportID = @ImportID AND r.RowNo BETWEEN @First AND @Last AND r.LinkMade = 1
  INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Kind, Qty, Cost_ea, Cost_wt, QtyAfter)
    SELECT SKU, MatrixSKU, @Reason, 'Adjustment', NewStock, ISNULL(Cost_ea, 0), ISNULL(Cost_ea, 0), NewStock FROM ImportItem
      WHERE ImportID = @ImportID AND RowNo BETWEEN @First AND @Last AND Made = 1 AND NewStock <> 0
  IF NOT EXISTS (SELECT * FROM ImportItem WHERE ImportID = @ImportID AND RowNo BETWEEN @First AND @Last AND Made = 0)
    RETURN
  UPDATE Item SET Name = ISNULL(r.NewName, Item.Name), DepartmentID = ISNULL(r.NewDepartmentID, Item.DepartmentID), TaxID = ISNULL(r.NewTaxID, Item.TaxID),
      Reorder = ISNULL(r.NewReorder, Item.Reorder), Restock = ISNULL(r.NewRestock, Item.Restock), Active = ISNULL(r.NewActive, Item.Active)
    FROM Item INNER JOIN ImportItem r ON r.SKU = Item.SKU AND r.MatrixSKU = Item.MatrixSKU
    WHERE r.ImportID = @ImportID AND r.RowNo BETWEEN @First AND @Last AND r.Made = 0
      AND COALESCE(r.NewDepartmentID, r.NewTaxID, r.NewReorder, r.NewRestock, CASE WHEN r.NewName IS NOT NULL OR r.NewActive IS NOT NULL THEN 1 END) IS NOT NULL
  UPDATE Item SET Notes = r.NewNotes FROM Item INNER JOIN ImportItem r ON r.SKU = Item.SKU AND r.MatrixSKU = Item.MatrixSKU
    WHERE r.ImportID = @ImportID AND r.RowNo BETWEEN @First AND @Last AND r.Made = 0 AND r.NewNotes IS NOT NULL
  UPDATE PriceMatrix SET Price = r.NewPrice FROM PriceMatrix INNER JOIN ImportItem r ON r.SKU = PriceMatrix.SKU AND r.MatrixSKU = PriceMatrix.MatrixSKU
    WHERE r.ImportID = @ImportID AND r.RowNo BETWEEN @First AND @Last AND r.Made = 0 AND r.NewPrice IS NOT NULL AND r.OldPrice IS NOT NULL AND PriceMatrix.Tier = 1 AND PriceMatrix.Quantity IN (0, 1)
  UPDATE SupplierMatrixDetail SET Cost = ISNULL(r.NewCost, SupplierMatrixDetail.Cost), PartNo = ISNULL(r.NewPartNo, SupplierMatrixDetail.PartNo)
    FROM SupplierMatrixDetail INNER JOIN ImportItem r ON r.SKU = SupplierMatrixDetail.SKU AND r.MatrixSKU = SupplierMatrixDetail.MatrixSKU AND r.SupID = SupplierMatrixDetail.SupID
      AND r.OldCost = SupplierMatrixDetail.Cost
    WHERE r.ImportID = @ImportID AND r.RowNo BETWEEN @First AND @Last AND r.LinkMade = 0
  SET @row = @First - 1
  WHILE 1 = 1
  BEGIN
    SELECT TOP 1 @row = RowNo, @sku = SKU, @matrix = MatrixSKU, @old = ISNULL(OldStock, 0), @new = NewStock, @cost = Cost_ea FROM ImportItem
      WHERE ImportID = @ImportID AND RowNo > @row AND RowNo <= @Last AND Made = 0 AND NewStock IS NOT NULL ORDER BY RowNo
    IF @@ROWCOUNT = 0
      BREAK
    UPDATE Stock SET Quantity = @new WHERE SKU = @sku AND MatrixSKU = @matrix
    IF @@ROWCOUNT = 0
      INSERT INTO Stock (SKU, MatrixSKU, Quantity) VALUES (@sku, @matrix, @new)
    IF @cost IS NULL
      SELECT TOP 1 @cost = Cost_wt FROM InventoryLedger WHERE SKU = @sku AND MatrixSKU = @matrix AND Cost_wt IS NOT NULL ORDER BY LedgerID DESC
    INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Kind, Qty, Cost_ea) VALUES (@sku, @matrix, @Reason, 'Adjustment', @new - @old, ISNULL(@cost, 0))
    UPDATE ImportItem SET LedgerID = SCOPE_IDENTITY() WHERE ImportID = @ImportID AND RowNo = @row
  END
END
