-- One posting to a customer's account, open in full; the balance moves by it. A debit is due on its day. Nothing, what is no whole number of cents, and more than
-- 999,999,999.99 are refused.
CREATE PROCEDURE sp_PostAdjustment @BatchNumber int, @StoreId int, @CustomerId int, @CashierId int, @AdjustmentAmount money, @CreditId int, @CreditCode varchar(25) AS
SET NOCOUNT ON
SET XACT_ABORT ON
DECLARE @id int, @amountText varchar(40)
IF @AdjustmentAmount IS NULL OR @AdjustmentAmount = 0 OR @AdjustmentAmount <> ROUND(@AdjustmentAmount, 2)
BEGIN
  SET @amountText = ISNULL(CONVERT(varchar(40), @AdjustmentAmount, 2), 'nothing')
  RAISERROR('An adjustment is in whole cents, above or below zero: %s cannot be posted. Nothing was posted.', 16, 1, @amountText)
  RETURN
END
IF @AdjustmentAmount > 999999999.99 OR @AdjustmentAmount < -999999999.99
BEGIN
  RAISERROR('An adjustment of more than 999,999,999.99 cannot be posted. Nothing was posted.', 16, 1)
  RETURN
END
IF NOT EXISTS (SELECT * FROM Customer WHERE ID = @CustomerId)
BEGIN
  RAISERROR('The customer %d is not there any more. Nothing was posted.', 16, 1, @CustomerId)
  RETURN
END
BEGIN TRANSACTION
UPDATE Customer SET Balance = Balance + @AdjustmentAmount WHERE ID = @CustomerId
INSERT INTO CreditTransaction (BatchNumber, StoreID, CustomerID, CashierID, CreditID, CreditCode, PastDueDate, Total, OutstandingBalance)
  VALUES (@BatchNumber, @StoreId, @CustomerId, @CashierId, @CreditId, @CreditCode, CASE WHEN @AdjustmentAmount > 0 THEN CONVERT(varchar(10), GETDATE(), 120) END,
    @AdjustmentAmount, @AdjustmentAmount)
SET @id = SCOPE_IDENTITY()
UPDATE CreditTransaction SET TransactionNumber = -CreditTransID WHERE CreditTransID = @id
COMMIT TRANSACTION
