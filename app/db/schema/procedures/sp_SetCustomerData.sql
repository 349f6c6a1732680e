-- Writes what the customer screen does not bind; an empty text is no number and no state.
CREATE PROCEDURE sp_SetCustomerData @CustomerID int, @PhoneNumber varchar(30), @FaxNumber varchar(30), @State varchar(2) AS
UPDATE Customer SET PhoneNumber = NULLIF(@PhoneNumber, ''), FaxNumber = NULLIF(@FaxNumber, ''), State = NULLIF(@State, '') WHERE ID = @CustomerID
