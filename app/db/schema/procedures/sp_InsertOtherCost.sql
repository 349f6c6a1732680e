-- Freight and the like of one receipt; its key.
CREATE PROCEDURE sp_InsertOtherCost @PONumber int, @Amount money, @Description varchar(255) AS
SET NOCOUNT ON
INSERT INTO PurchaseOrderCost (POID, Amount, Description) SELECT POID, @Amount, @Description FROM PurchaseOrder WHERE PONumber = @PONumber
SELECT CAST(SCOPE_IDENTITY() AS int) AS CostID
