-- What happened to one line of an order, event by event: R a receipt, C a cancellation. Without events one row with Count 0.
CREATE PROCEDURE sp_GetPOItemHistory @PONumber int, @SKU varchar(100), @MatrixSKU varchar(100) AS
SELECT Item.Name, i.Qty AS CommitedQty, i.Qty - i.QtyRecvd - i.QtyCanceled AS OpenQty, CASE WHEN e.OperationType IS NULL THEN 0 ELSE 1 END AS Count,
  e.OperationType, e.OperationDateTime, e.Quantity
FROM PurchaseOrder o INNER JOIN PurchaseOrderItem i ON i.POID = o.POID INNER JOIN Item ON Item.SKU = i.SKU AND Item.MatrixSKU = i.MatrixSKU
  LEFT JOIN (SELECT POID, SKU, MatrixSKU, 'R' AS OperationType, PostDate AS OperationDateTime, Quantity, ReceiptLineID AS LineID FROM PurchaseOrderReceipt
    UNION ALL SELECT POID, SKU, MatrixSKU, 'C', PostDate, Quantity, CancelLineID FROM PurchaseOrderCancel) e
  ON e.POID = i.POID AND e.SKU = i.SKU AND e.MatrixSKU = i.MatrixSKU
WHERE o.PONumber = @PONumber AND i.SKU = @SKU AND i.MatrixSKU = @MatrixSKU
ORDER BY e.OperationDateTime, e.OperationType DESC, e.LineID
