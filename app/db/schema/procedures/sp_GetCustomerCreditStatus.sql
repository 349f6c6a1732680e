-- A customer's account, oldest first: what is open, or all of it for any other status. A posting of the store has no number of a register: it goes by its own, below zero.
CREATE PROCEDURE sp_GetCustomerCreditStatus @CustomerId int, @TransStatus varchar(25) AS
SELECT ISNULL(TransactionNumber, -CreditTransID) AS TransactionNumber, CreditCode, Time, PastDueDate, Total, OutstandingBalance FROM CreditTransaction
  WHERE CustomerID = @CustomerId AND (@TransStatus <> 'open' OR OutstandingBalance <> 0)
  ORDER BY Time, CreditTransID
