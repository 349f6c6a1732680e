-- The key of the order of that number; no row when there is none.
CREATE PROCEDURE sp_PONumber2POID @PONumber int AS
SELECT POID FROM PurchaseOrder WHERE PONumber = @PONumber
