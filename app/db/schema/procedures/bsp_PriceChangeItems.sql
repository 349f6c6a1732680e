-- What a change of many prices wrote.
CREATE PROCEDURE bsp_PriceChangeItems @PriceChangeID int AS
SELECT SKU, MatrixSKU, Tier, Quantity, OldPrice, NewPrice FROM PriceChangeItem WHERE PriceChangeID = @PriceChangeID
ORDER BY SKU, MatrixSKU, Tier, Quantity
