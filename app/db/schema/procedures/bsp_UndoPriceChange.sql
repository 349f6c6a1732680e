-- Marks a change of many prices as undone; Marked is 0 when it was before.
CREATE PROCEDURE bsp_UndoPriceChange @PriceChangeID int AS
BEGIN
  SET NOCOUNT ON
  UPDATE PriceChange SET UndoneAt = GETDATE() WHERE PriceChangeID = @PriceChangeID AND UndoneAt IS NULL
  SELECT @@ROWCOUNT AS Marked
END
