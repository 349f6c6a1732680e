-- What the customer screen does not bind.
CREATE PROCEDURE sp_GetCustomerData @CustomerID int AS
SELECT PhoneNumber, FaxNumber, State FROM Customer WHERE ID = @CustomerID
