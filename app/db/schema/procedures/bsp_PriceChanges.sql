-- The changes of many prices, newest first.
CREATE PROCEDURE bsp_PriceChanges AS
SELECT c.PriceChangeID, c.MadeAt, c.Words, (SELECT COUNT(*) FROM PriceChangeItem i WHERE i.PriceChangeID = c.PriceChangeID) AS Prices, c.UndoneAt
FROM PriceChange c ORDER BY c.PriceChangeID DESC
