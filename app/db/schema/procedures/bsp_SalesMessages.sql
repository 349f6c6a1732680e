-- The sales messages, the base message first, updatable.
CREATE PROCEDURE bsp_SalesMessages AS
SELECT SalesMsgID, Message FROM SalesMessages ORDER BY SalesMsgID
