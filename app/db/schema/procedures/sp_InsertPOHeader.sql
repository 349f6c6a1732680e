-- Opens an order with a supplier, still without a number; its key.
CREATE PROCEDURE sp_InsertPOHeader @SupID smallint AS
SET NOCOUNT ON
INSERT INTO PurchaseOrder (SupID) VALUES (@SupID)
SELECT CAST(SCOPE_IDENTITY() AS int) AS POID
