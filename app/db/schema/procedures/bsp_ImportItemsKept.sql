-- The rows of an import, among these, that cannot be taken back since their item was changed behind it, with what is the matter; a hundred at most.
-- Movements of stock by imports that were undone since, and those that undid them, stand in no way: they come to nothing. An item that the import made has its own movement alone beside them.
CREATE PROCEDURE bsp_ImportItemsKept @ImportID int, @First int, @Last int AS
BEGIN
  SET NOCOUNT ON
  CREATE TABLE #undone (LedgerID int NOT NULL PRIMARY KEY)
  INSERT INTO #undone (LedgerID) SELECT x.LedgerID FROM ImportRun u INNER JOIN ImportItem x ON x.ImportID = u.ImportID
    WHERE u.ImportID > @ImportID AND u.UndoneAt IS NOT NULL AND x.LedgerID IS NOT NULL
  SELECT TOP 100 r.RowNo, r.MatrixSKU,
      CASE WHEN i.SKU IS NULL THEN 'was deleted'
        WHEN EXISTS (SELECT * FROM TransactionEntry e WHERE e.SKU = r.SKU AND e.MatrixSKU = r.MatrixSKU) AND r.Made = 1 THEN 'was sold'
        WHEN EXISTS (SELECT * FROM PurchaseOrderItem o WHERE o.SKU = r.SKU AND o.MatrixSKU = r.MatrixSKU) AND r.Made = 1 THEN 'was ordered'
        WHEN r.NewPrice IS NOT NULL AND ISNULL((SELECT MAX(Price) FROM PriceMatrix p WHERE p.SKU = r.SKU AND p.MatrixSKU = r.MatrixSKU AND p.Tier = 1 AND p.Quantity IN (0, 1)), -1) <> r.NewPrice
          THEN 'has another price since'
        WHEN (r.NewStock IS NOT NULL OR r.Made = 1) AND ISNULL((SELECT Quantity FROM Stock s WHERE s.SKU = r.SKU AND s.MatrixSKU = r.MatrixSKU), 0) <> ISNULL(r.NewStock, 0) THEN 'has another stock since'
        WHEN (r.NewStock IS NOT NULL OR r.Made = 1) AND (SELECT COUNT(*) FROM InventoryLedger l WHERE l.SKU = r.SKU AND l.MatrixSKU = r.MatrixSKU AND (r.Made = 1 OR l.LedgerID > r.LedgerID)
            AND NOT EXISTS (SELECT * FROM #undone u WHERE u.LedgerID IN (l.LedgerID, l.ReversesID))) <> CASE WHEN r.Made = 1 AND ISNULL(r.NewStock, 0) <> 0 THEN 1 ELSE 0 END
          THEN 'had other movements of stock since'
        ELSE 'has other data since' END AS What
    FROM ImportItem r LEFT JOIN Item i ON i.SKU = r.SKU AND i.MatrixSKU = r.MatrixSKU
    WHERE r.ImportID = @ImportID AND r.RowNo BETWEEN @First AND @Last AND (i.SKU IS NULL
      OR (r.NewName IS NOT NULL AND ISNULL(i.Name, '') <> r.NewName)
      OR (r.NewDepartmentID IS NOT NULL AND ISNULL(i.DepartmentID, -1) <> r.NewDepartmentID)
      OR (r.NewTaxID IS NOT NULL AND i.TaxID <> r.NewTaxID)
      OR (r.NewReorder IS NOT NULL AND i.Reorder <> r.NewReorder)
      OR (r.NewRestock IS NOT NULL AND i.Restock <> r.NewRestock)
      OR (r.NewActive IS NOT NULL AND i.Active <> r.NewActive)
      OR (r.NewNotes IS NOT NULL AND ISNULL(CAST(i.Notes AS varchar(8000)), '') <> r.NewNotes)
      OR (r.NewPrice IS NOT NULL
        AND ISNULL((SELECT MAX(Price) FROM PriceMatrix p WHERE p.SKU = r.SKU AND p.MatrixSKU = r.MatrixSKU AND p.Tier = 1 AND p.Quantity IN (0, 1)), -1) <> r.NewPrice)
      OR (r.NewStock IS NOT NULL AND ISNULL((SELECT Quantity FROM Stock s WHERE s.SKU = r.SKU AND s.MatrixSKU = r.MatrixSKU), 0) <> r.NewStock)
      OR ((r.LedgerID IS NOT NULL OR r.Made = 1)
        AND (SELECT COUNT(*) FROM InventoryLedger l WHERE l.SKU = r.SKU AND l.MatrixSKU = r.MatrixSKU AND (r.Made = 1 OR l.LedgerID > r.LedgerID)
          AND NOT EXISTS (SELECT * FROM #undone u WHERE u.LedgerID IN (l.LedgerID, l.ReversesID))) <> CASE WHEN r.Made = 1 AND ISNULL(r.NewStock, 0) <> 0 THEN 1 ELSE 0 END)
      OR (r.SupID IS NOT NULL AND NOT EXISTS (SELECT * FROM SupplierMatrixDetail d WHERE d.SKU = r.SKU AND d.MatrixSKU = r.MatrixSKU AND d.SupID = r.SupID
        AND d.Cost = COALESCE(r.NewCost, r.OldCost, 0) AND ISNULL(d.PartNo, '') = COALESCE(r.NewPartNo, r.OldPartNo, '')))
      OR (r.Made = 1 AND (i.TypeID <> 6 OR i.SerialFlag = 1 OR i.FoodStampFlag = 1 OR i.SalesMsgID <> 0 OR i.TagAlongSKU IS NOT NULL OR i.StoreLocation IS NOT NULL OR i.BarcodeID IS NOT NULL
        OR (r.NewName IS NULL AND ISNULL(i.Name, '') <> '') OR (r.NewNotes IS NULL AND ISNULL(CAST(i.Notes AS varchar(8000)), '') <> '')
        OR (r.NewDepartmentID IS NULL AND i.DepartmentID <> 1) OR (r.NewReorder IS NULL AND i.Reorder <> 0) OR (r.NewRestock IS NULL AND i.Restock <> 0) OR (r.NewActive IS NULL AND i.Active = 0)
        OR ISNULL((SELECT Quantity FROM Stock s WHERE s.SKU = r.SKU AND s.MatrixSKU = r.MatrixSKU), 0) <> ISNULL(r.NewStock, 0)
        OR (SELECT COUNT(*) FROM PriceMatrix p WHERE p.SKU = r.SKU AND p.MatrixSKU = r.MatrixSKU) <> 1
        OR (SELECT COUNT(*) FROM SupplierMatrixDetail d WHERE d.SKU = r.SKU AND d.MatrixSKU = r.MatrixSKU) <> CASE WHEN r.SupID IS NULL THEN 0 ELSE 1 END
        OR (r.NewPrice IS NULL AND EXISTS (SELECT * FROM PriceMatrix p WHERE p.SKU = r.SKU AND p.MatrixSKU = r.MatrixSKU AND p.Price <> 0))
        OR EXISTS (SELECT * FROM TransactionEntry e WHERE e.SKU = r.SKU AND e.MatrixSKU = r.MatrixSKU)
        OR EXISTS (SELECT * FROM PurchaseOrderItem o WHERE o.SKU = r.SKU AND o.MatrixSKU = r.MatrixSKU)
        OR EXISTS (SELECT * FROM LayawayEntry e WHERE e.SKU = r.SKU AND e.MatrixSKU = r.MatrixSKU)
        OR EXISTS (SELECT * FROM Sales e WHERE e.SKU = r.SKU AND e.MatrixSKU = r.MatrixSKU)
        OR EXISTS (SELECT * FROM ItemSubstitutes e WHERE e.SKU = r.SKU AND e.MatrixSKU = r.MatrixSKU)
        OR EXISTS (SELECT * FROM StockSerials e WHERE e.SKU = r.SKU AND e.MatrixSKU = r.MatrixSKU))))
    ORDER BY r.RowNo
  DROP TABLE #undone
END
