-- The first row of an import, among these, whose item is no longer what the import was reckoned from, with what is the matter.
CREATE PROCEDURE bsp_ImportItemsMoved @ImportID int, @First int, @Last int AS
SELECT TOP 1 r.RowNo, r.MatrixSKU,
    CASE WHEN r.Made = 1 THEN 'was made meanwhile' WHEN i.SKU IS NULL THEN 'was deleted meanwhile'
      WHEN r.NewPrice IS NOT NULL AND ISNULL((SELECT MAX(Price) FROM PriceMatrix p WHERE p.SKU = r.SKU AND p.MatrixSKU = r.MatrixSKU AND p.Tier = 1 AND p.Quantity IN (0, 1)), -1) <> ISNULL(r.OldPrice, -1)
        THEN 'has another price meanwhile'
      WHEN r.NewStock IS NOT NULL AND ISNULL((SELECT Quantity FROM Stock s WHERE s.SKU = r.SKU AND s.MatrixSKU = r.MatrixSKU), 0) <> ISNULL(r.OldStock, 0) THEN 'has another stock meanwhile'
      WHEN r.SupID IS NOT NULL THEN 'has other data meanwhile, or another cost'
      ELSE 'has other data meanwhile' END AS What
  FROM ImportItem r LEFT JOIN Item i ON i.SKU = r.SKU AND i.MatrixSKU = r.MatrixSKU
  WHERE r.ImportID = @ImportID AND r.RowNo BETWEEN @First AND @Last
    AND ((r.Made = 1 AND i.SKU IS NOT NULL)
      OR (r.Made = 0 AND (i.SKU IS NULL
        OR (r.NewName IS NOT NULL AND ISNULL(i.Name, '') <> ISNULL(r.OldName, ''))
        OR (r.NewDepartmentID IS NOT NULL AND ISNULL(i.DepartmentID, -1) <> ISNULL(r.OldDepartmentID, -1))
        OR (r.NewTaxID IS NOT NULL AND i.TaxID <> r.OldTaxID)
        OR (r.NewReorder IS NOT NULL AND i.Reorder <> r.OldReorder)
        OR (r.NewRestock IS NOT NULL AND i.Restock <> r.OldRestock)
        OR (r.NewActive IS NOT NULL AND i.Active <> r.OldActive)
        OR (r.NewNotes IS NOT NULL AND ISNULL(CAST(i.Notes AS varchar(8000)), '') <> ISNULL(r.OldNotes, ''))
        OR (r.NewPrice IS NOT NULL
          AND ISNULL((SELECT MAX(Price) FROM PriceMatrix p WHERE p.SKU = r.SKU AND p.MatrixSKU = r.MatrixSKU AND p.Tier = 1 AND p.Quantity IN (0, 1)), -1) <> ISNULL(r.OldPrice, -1))
        OR (r.NewStock IS NOT NULL AND ISNULL((SELECT Quantity FROM Stock s WHERE s.SKU = r.SKU AND s.MatrixSKU = r.MatrixSKU), 0) <> ISNULL(r.OldStock, 0))
        OR (r.LinkMade = 1 AND EXISTS (SELECT * FROM SupplierMatrixDetail d WHERE d.SKU = r.SKU AND d.MatrixSKU = r.MatrixSKU AND d.SupID = r.SupID))
        OR (r.LinkMade = 0 AND NOT EXISTS (SELECT * FROM SupplierMatrixDetail d WHERE d.SKU = r.SKU AND d.MatrixSKU = r.MatrixSKU AND d.SupID = r.SupID AND d.Cost = r.OldCost
            AND ISNULL(d.PartNo, '') = ISNULL(r.OldPartNo, ''))))))
  ORDER BY r.RowNo
