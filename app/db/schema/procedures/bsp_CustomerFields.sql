-- Gives a customer a value, empty as yet, in each of the store's own fields that has none.
CREATE PROCEDURE bsp_CustomerFields @CustomerID int AS
SET NOCOUNT ON
-- Where none is missing nothing is written: the screen that only looks waits for nobody.
IF EXISTS (SELECT * FROM CustomFields f WHERE NOT EXISTS (SELECT * FROM CustomFieldValues v WHERE v.CustID = @CustomerID AND v.CustFieldName = f.CustFieldName))
INSERT INTO CustomFieldValues (CustID, CustFieldName) SELECT @CustomerID, CustFieldName FROM CustomFields f
  WHERE EXISTS (SELECT * FROM Customer WHERE ID = @CustomerID) AND NOT EXISTS (SELECT * FROM CustomFieldValues v WHERE v.CustID = @CustomerID AND v.CustFieldName = f.CustFieldName)
