-- The list of customers: 1, 0 all of them; 1, 1 the active ones; 0, 0 the inactive ones.
CREATE PROCEDURE sp_GetAllCustomers @Active int, @Only int AS
SELECT ID, FirstName, LastName, Company, CleanPhoneNumber, City, State, Zip FROM Customer
  WHERE (@Active = 1 AND @Only = 0) OR (@Active = 1 AND Active = 1) OR (@Active = 0 AND Active = 0)
  ORDER BY ID
