-- The text of one sales message.
CREATE PROCEDURE bsp_SalesMessagesLookup @id int AS
SELECT Message FROM SalesMessages WHERE SalesMsgID = @id
