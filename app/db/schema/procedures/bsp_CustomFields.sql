-- The fields that the store added to its customers, updatable.
CREATE PROCEDURE bsp_CustomFields AS
SELECT CustFieldName, CustFieldType FROM CustomFields ORDER BY CustFieldName
