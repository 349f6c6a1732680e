-- Opens a change of many prices; gives its key.
CREATE PROCEDURE bsp_NewPriceChange @Words varchar(255) AS
BEGIN
  SET NOCOUNT ON
  INSERT INTO PriceChange (Words) VALUES (@Words)
  SELECT CAST(SCOPE_IDENTITY() AS int) AS PriceChangeID
END
