-- The key of the order of that number and what has become of it; no row when there is none.
CREATE PROCEDURE sp_GetPOID @PONumber int AS
SELECT POID, Status FROM PurchaseOrder WHERE PONumber = @PONumber
