-- The items of sp_GetAllReorderItems in the chosen departments.
CREATE PROCEDURE sp_GetReorderItemsByDept AS
SELECT Item.SKU, Item.MatrixSKU, Stock.Quantity, Item.Restock, Item.Reorder,
  (SELECT ISNULL(SUM(CASE WHEN i.Qty > i.QtyRecvd + i.QtyCanceled THEN i.Qty - i.QtyRecvd - i.QtyCanceled ELSE 0 END), 0) FROM PurchaseOrderItem i INNER JOIN PurchaseOrder o ON o.POID = i.POID
    WHERE i.SKU = Item.SKU AND i.MatrixSKU = Item.MatrixSKU AND o.Status <> 'C' AND i.Qty > i.QtyRecvd + i.QtyCanceled) AS QtyOrdered
FROM Item INNER JOIN Stock ON Stock.SKU = Item.SKU AND Stock.MatrixSKU = Item.MatrixSKU
WHERE Item.Active = 1 AND Item.TypeID <> 4 AND Item.SKU NOT LIKE '$%' AND Item.Reorder > 0 AND Stock.Quantity <= Item.Restock
  AND EXISTS (SELECT * FROM SupplierMatrixDetail d WHERE d.SKU = Item.SKU AND d.MatrixSKU = Item.MatrixSKU AND d.SupID <> 0)
  AND Item.DepartmentID IN (SELECT DepartmentID FROM wrkPODepartments)
ORDER BY Item.SKU, Item.MatrixSKU
