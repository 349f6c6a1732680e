-- Moves an order to partial or closed. A closed order stays closed.
CREATE PROCEDURE sp_ChangePOStatus @PONumber smallint, @Status char(1) AS
UPDATE PurchaseOrder SET Status = @Status WHERE PONumber = @PONumber AND Status <> 'C'
