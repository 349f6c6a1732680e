-- Takes a sale event away.
CREATE PROCEDURE sp_DeleteSale @ID int AS
DELETE FROM Sales WHERE ID = @ID
