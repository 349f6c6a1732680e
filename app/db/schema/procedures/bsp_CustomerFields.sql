-- Gives a customer a value, empty as yet, in each of the store's own fields that has none.
CREATE PROCEDURE bsp_CustomerFields @CustomerID int AS
SET NOCOUNT ON
INSERT INTO CustomFieldValues (CustID, CustFieldName) SELECT @CustomerID, CustFieldName FROM CustomFields f
  WHERE EXISTS (SELECT * FROM Customer WHERE ID = @CustomerID) AND NOT EXISTS (SELECT * FROM CustomFieldValues v WHERE v.CustID = @CustomerID AND v.CustFieldName = f.CustFieldName)
