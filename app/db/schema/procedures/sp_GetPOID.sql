-- The key of the order of that number; no row when there is none.
CREATE PROCEDURE sp_GetPOID @PONumber int AS
SELECT POID FROM PurchaseOrder WHERE PONumber = @PONumber
