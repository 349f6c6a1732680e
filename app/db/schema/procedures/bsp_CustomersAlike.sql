-- Another customer with the same phone number or email, if there is one.
CREATE PROCEDURE bsp_CustomersAlike @CustomerID int, @PhoneNumber varchar(30), @Email varchar(100) AS
DECLARE @digits varchar(30)
SET @digits = REPLACE(REPLACE(REPLACE(REPLACE(REPLACE(REPLACE(@PhoneNumber, '(', ''), ')', ''), '-', ''), ' ', ''), '.', ''), '/', '')
SELECT TOP 1 RTRIM(LTRIM(ISNULL(FirstName, '') + ' ' + ISNULL(LastName, ''))) AS Name, CASE WHEN CleanPhoneNumber = @digits THEN 'phone number' ELSE 'email' END AS What
  FROM Customer WHERE ID <> @CustomerID AND ((@digits <> '' AND CleanPhoneNumber = @digits) OR (@Email <> '' AND Email = @Email))
  ORDER BY ID
