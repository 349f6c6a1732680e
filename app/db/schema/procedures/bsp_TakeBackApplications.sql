-- Takes back what a batch has applied to a customer's postings by half: each gets its part again, and the open row that held their sum goes.
CREATE PROCEDURE bsp_TakeBackApplications @BatchNumber int, @CustomerId int AS
SET NOCOUNT ON
UPDATE CreditTransaction SET OutstandingBalance = OutstandingBalance
    + (SELECT SUM(a.Amount) FROM CreditApplication a WHERE a.CreditTransID = CreditTransaction.CreditTransID AND a.BatchNumber = @BatchNumber AND a.Pending = 1)
  WHERE CreditTransID IN (SELECT CreditTransID FROM CreditApplication WHERE BatchNumber = @BatchNumber AND CustomerID = @CustomerId AND Pending = 1)
DELETE FROM CreditTransaction WHERE CreditTransID = (SELECT MAX(c.CreditTransID) FROM CreditTransaction c
  WHERE c.CustomerID = @CustomerId AND c.BatchNumber = @BatchNumber AND c.Total = 0 AND NOT EXISTS (SELECT * FROM CreditApplication a WHERE a.CreditTransID = c.CreditTransID))
DELETE FROM CreditApplication WHERE BatchNumber = @BatchNumber AND CustomerID = @CustomerId AND Pending = 1
