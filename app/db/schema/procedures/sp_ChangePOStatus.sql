-- Moves an order to partial or closed, whoever asks for what: one with lines of which nothing is open is closed. Of two managers who receive the rest at the same time each
-- saw the other's part open. A closed order stays closed, but for its editor, who asks for O: what that one left open is partial again, or open when nothing came in or was cancelled.
-- Any other state the editor leaves as it is.
CREATE PROCEDURE sp_ChangePOStatus @PONumber int, @Status char(1) AS
UPDATE PurchaseOrder SET Status = CASE
  WHEN EXISTS (SELECT * FROM PurchaseOrderItem i WHERE i.POID = PurchaseOrder.POID)
    AND NOT EXISTS (SELECT * FROM PurchaseOrderItem i WHERE i.POID = PurchaseOrder.POID AND i.Qty > i.QtyRecvd + i.QtyCanceled) THEN 'C'
  WHEN @Status <> 'O' THEN @Status
  WHEN Status <> 'C' THEN Status
  WHEN EXISTS (SELECT * FROM PurchaseOrderItem i WHERE i.POID = PurchaseOrder.POID AND i.QtyRecvd + i.QtyCanceled > 0) THEN 'P'
  ELSE 'O' END
WHERE PONumber = @PONumber AND (Status <> 'C' OR @Status = 'O')
