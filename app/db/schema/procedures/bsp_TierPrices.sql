-- All prices of a tier with their quantity breaks.
CREATE PROCEDURE bsp_TierPrices @Tier int AS
SELECT SKU, MatrixSKU, Quantity, Price FROM PriceMatrix WHERE Tier = @Tier ORDER BY SKU, MatrixSKU, Quantity
