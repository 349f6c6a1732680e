-- What each customer owes, and how much at most.
CREATE PROCEDURE bsp_CustomerAccounts AS
SELECT ID, Balance, AccountLimit FROM Customer ORDER BY ID
