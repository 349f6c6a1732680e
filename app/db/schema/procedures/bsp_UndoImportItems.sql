-- Takes these rows of an import back: items that it made go, fields get what stood there, a stock goes by an opposite movement that names the one it reverses.
CREATE PROCEDURE bsp_UndoImportItems @ImportID int, @First int, @Last int AS
BEGIN
  SET NOCOUNT ON
  DECLARE @row int, @ledger int
  DELETE Item FROM ImportItem r INNER JOIN Item ON Item.SKU = r.SKU AND Item.MatrixSKU = r.MatrixSKU
    WHERE r.ImportID = @ImportID AND r.RowNo BETWEEN @First AND @Last AND r.Made = 1
  IF NOT EXISTS (SELECT * FROM ImportItem WHERE ImportID = @ImportID AND RowNo BETWEEN @First AND @Last AND Made = 0)
    RETURN
  UPDATE Item SET Name = CASE WHEN r.NewName IS NULL THEN Item.Name ELSE r.OldName END, DepartmentID = CASE WHEN r.NewDepartmentID IS NULL THEN Item.DepartmentID ELSE r.OldDepartmentID END,
      TaxID = CASE WHEN r.NewTaxID IS NULL THEN Item.TaxID ELSE r.OldTaxID END, Reorder = CASE WHEN r.NewReorder IS NULL THEN Item.Reorder ELSE r.OldReorder END,
      Restock = CASE WHEN r.NewRestock IS NULL THEN Item.Restock ELSE r.OldRestock END, Active = CASE WHEN r.NewActive IS NULL THEN Item.Active ELSE r.OldActive END
    FROM Item INNER JOIN ImportItem r ON r.SKU = Item.SKU AND r.MatrixSKU = Item.MatrixSKU
    WHERE r.ImportID = @ImportID AND r.RowNo BETWEEN @First AND @Last AND r.Made = 0
  UPDATE Item SET Notes = r.OldNotes FROM Item INNER JOIN ImportItem r ON r.SKU = Item.SKU AND r.MatrixSKU = Item.MatrixSKU
    WHERE r.ImportID = @ImportID AND r.RowNo BETWEEN @First AND @Last AND r.Made = 0 AND r.NewNotes IS NOT NULL
  DELETE PriceMatrix FROM ImportItem r INNER JOIN PriceMatrix ON PriceMatrix.SKU = r.SKU AND PriceMatrix.MatrixSKU = r.MatrixSKU AND PriceMatrix.Tier = 1 AND PriceMatrix.Quantity = 1
    WHERE r.ImportID = @ImportID AND r.RowNo BETWEEN @First AND @Last AND r.Made = 0 AND r.NewPrice IS NOT NULL AND r.OldPrice IS NULL
  UPDATE PriceMatrix SET Price = r.OldPrice FROM PriceMatrix INNER JOIN ImportItem r ON r.SKU = PriceMatrix.SKU AND r.MatrixSKU = PriceMatrix.MatrixSKU
    WHERE r.ImportID = @ImportID AND r.RowNo BETWEEN @First AND @Last AND r.Made = 0 AND r.NewPrice IS NOT NULL AND r.OldPrice IS NOT NULL AND PriceMatrix.Tier = 1 AND PriceMatrix.Quantity IN (0, 1)
  DELETE SupplierMatrixDetail FROM ImportItem r INNER JOIN SupplierMatrixDetail ON SupplierMatrixDetail.SKU = r.SKU AND SupplierMatrixDetail.MatrixSKU = r.MatrixSKU
      AND SupplierMatrixDetail.SupID = r.SupID AND SupplierMatrixDetail.Cost = ISNULL(r.NewCost, 0)
    WHERE r.ImportID = @ImportID AND r.RowNo BETWEEN @First AND @Last AND r.Made = 0 AND r.LinkMade = 1
  UPDATE SupplierMatrixDetail SET Cost = r.OldCost, PartNo = r.OldPartNo
    FROM SupplierMatrixDetail INNER JOIN ImportItem r ON r.SKU = SupplierMatrixDetail.SKU AND r.MatrixSKU = SupplierMatrixDetail.MatrixSKU AND r.SupID = SupplierMatrixDetail.SupID
      AND SupplierMatrixDetail.Cost = ISNULL(r.NewCost, r.OldCost)
    WHERE r.ImportID = @ImportID AND r.RowNo BETWEEN @First AND @Last AND r.LinkMade = 0
  SET @row = @First - 1
  WHILE 1 = 1
  BEGIN
    SELECT TOP 1 @row = RowNo, @ledger = LedgerID FROM ImportItem WHERE ImportID = @ImportID AND RowNo > @row AND RowNo <= @Last AND Made = 0 AND LedgerID IS NOT NULL ORDER BY RowNo
    IF @@ROWCOUNT = 0
      BREAK
    UPDATE Stock SET Quantity = Quantity - (SELECT Qty FROM InventoryLedger WHERE LedgerID = @ledger)
      WHERE EXISTS (SELECT * FROM InventoryLedger l WHERE l.LedgerID = @ledger AND l.SKU = Stock.SKU AND l.MatrixSKU = Stock.MatrixSKU)
    INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Kind, Qty, Cost_ea, ReversesID) SELECT SKU, MatrixSKU, Type, 'Adjustment', -Qty, Cost_ea, LedgerID FROM InventoryLedger WHERE LedgerID = @ledger
  END
END
