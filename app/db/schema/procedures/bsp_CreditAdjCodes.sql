-- The reasons of a posting to a customer's account.
CREATE PROCEDURE bsp_CreditAdjCodes AS
SELECT CreditID, CreditCode, Description FROM CreditCodes ORDER BY CreditID
