-- Moves an order to partial or closed. A closed order stays closed, and one of which nothing is open is closed whatever is asked: of two managers who receive the rest
-- at the same time each saw the other's part open.
CREATE PROCEDURE sp_ChangePOStatus @PONumber smallint, @Status char(1) AS
UPDATE PurchaseOrder SET Status = CASE WHEN EXISTS (SELECT * FROM PurchaseOrderItem i WHERE i.POID = PurchaseOrder.POID AND i.Qty > i.QtyRecvd + i.QtyCanceled)
  OR NOT EXISTS (SELECT * FROM PurchaseOrderItem i WHERE i.POID = PurchaseOrder.POID) THEN @Status ELSE 'C' END
WHERE PONumber = @PONumber AND Status <> 'C'
