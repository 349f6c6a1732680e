-- What to order of an item and from whom: the cheapest supplier first (ByCost 1), ties by priority; or the first priority, ties by cost. Only suppliers that take part in the run, or the
-- one that is named.
--
-- How much, when Wanted (Reorder less what is on order) is above 0: the largest of
--   Wanted; the supplier's minimum order; what brings the stock above its reorder level (Restock + 1 less stock and what is on order);
-- and for a split item whole cases of its split parent, rounded up. An item that is no split item any more keeps its case unused. When nothing is wanted, 0.
-- Example: Reorder 10, nothing on order, 2 on hand, Restock 4, minimum 12: 12; sold in cases of 8: 16. With -20 on hand: Restock + 1 + 20 = 25, in cases 32.
-- A run over all suppliers refuses an item whose figures are no quantities of orders, so that it ends before anything of it is written.
CREATE PROCEDURE bsp_POInfo @SKU varchar(100), @MatrixSKU varchar(100), @Wanted int, @ByCost bit, @SupID smallint = NULL AS
DECLARE @short int, @case int, @stock int, @restock int, @figure int, @what varchar(100), @refused int
SELECT @stock = Stock.Quantity, @restock = Item.Restock, @short = Item.Restock + 1 - Stock.Quantity - (Item.Reorder - @Wanted)
  FROM Item INNER JOIN Stock ON Stock.SKU = Item.SKU AND Stock.MatrixSKU = Item.MatrixSKU
  WHERE Item.SKU = @SKU AND Item.MatrixSKU = @MatrixSKU
SELECT @case = m.SplitQuantity FROM ItemSplitMatrix m INNER JOIN Item ON Item.SKU = m.SKU AND Item.MatrixSKU = m.MatrixSKU
  WHERE m.SKU = @SKU AND m.MatrixSKU = @MatrixSKU AND m.SplitQuantity >= 2 AND Item.TypeID = 3
IF @SupID IS NULL
BEGIN
  -- The largest of the figures stands for all: a stock far below nothing makes a large quantity to order.
  SET @figure = CASE WHEN @Wanted > ISNULL(@short, 0) THEN @Wanted ELSE @short END
  SET @figure = CASE WHEN @figure <= 0 OR @case IS NULL THEN @figure ELSE (@figure + @case - 1) / @case * @case END
  SET @what = 'the quantity to order'
  IF @restock >= @figure
    SELECT @what = '"Reorder @"', @figure = @restock
  IF @stock >= @figure
    SELECT @what = 'the stock', @figure = @stock
  EXEC @refused = bsp_CheckQuantity @MatrixSKU, @figure, @what
  IF @refused <> 0
    RETURN
END
SELECT CASE WHEN n.Least <= 0 THEN 0 WHEN @case IS NULL THEN n.Least ELSE (n.Least + @case - 1) / @case * @case END AS ReorderQty, n.Cost, n.PartNo, n.SupID, n.Priority
FROM (SELECT d.Cost, d.PartNo, d.SupID, d.Priority,
    CASE WHEN @Wanted <= 0 THEN 0
      WHEN ISNULL(d.MinOrder, 0) > @Wanted AND ISNULL(d.MinOrder, 0) > @short THEN ISNULL(d.MinOrder, 0)
      WHEN @short > @Wanted THEN @short ELSE @Wanted END AS Least
  FROM SupplierMatrixDetail d
  WHERE d.SKU = @SKU AND d.MatrixSKU = @MatrixSKU
    AND (d.SupID = @SupID OR @SupID IS NULL AND EXISTS (SELECT * FROM wrkPOSuppliers w WHERE w.SupID = d.SupID))) n
ORDER BY CASE WHEN @ByCost = 1 THEN n.Cost ELSE n.Priority END, CASE WHEN @ByCost = 1 THEN n.Priority ELSE n.Cost END, n.SupID
