-- The order of that number.
CREATE PROCEDURE bsp_PurchaseOrders_PO @PONumber int AS
SELECT PONumber, Supplier, PODate, Amount, OpenAmount, Status, POID FROM PurchaseOrderList
WHERE PONumber = @PONumber
ORDER BY PONumber DESC
