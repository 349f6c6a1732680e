-- The price tiers, the base tier first, updatable.
CREATE PROCEDURE bsp_PriceTiers AS
SELECT TierID, TierName FROM TierDefs ORDER BY TierID
