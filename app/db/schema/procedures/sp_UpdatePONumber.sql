-- Gives a complete order its number, one above the highest so far; an order that has one keeps it. What is counted stays locked until the number is written:
-- two sessions never get the same one.
CREATE PROCEDURE sp_UpdatePONumber @POID int AS
SET NOCOUNT ON
UPDATE PurchaseOrder SET PONumber = (SELECT ISNULL(MAX(PONumber), 0) + 1 FROM PurchaseOrder WITH (UPDLOCK, HOLDLOCK)) WHERE POID = @POID AND PONumber IS NULL
SELECT PONumber FROM PurchaseOrder WHERE POID = @POID
