-- Takes an amount off what is open of a customer's posting: half of an application, whose other half is another posting with the opposite amount. The balance does not
-- move: until the halves of a batch meet, an open row with a total of 0 holds their sum, so that what is open always adds up to the balance.
-- What would pass zero, or leave more open than the posting ever was, is refused; the other halves of the batch are taken back then. So are fractions of a cent, unless
-- something open on the account has fractions itself.
CREATE PROCEDURE sp_PostAppliedAmount @BatchNumber int, @AppTransNumber int, @StoreId int, @CustomerId int, @CashierId int, @AdjustmentAmount money, @CreditId int,
  @CreditCode varchar(25) AS
SET NOCOUNT ON
SET XACT_ABORT ON
DECLARE @id int, @open money, @total money, @left money, @pending money, @balance money, @holder int, @batch int, @openText varchar(40), @amountText varchar(40), @says varchar(255)
IF @AdjustmentAmount = 0
  RETURN
BEGIN TRANSACTION
-- Whoever holds the customer's row applies; others wait.
SELECT @balance = Balance FROM Customer WITH (UPDLOCK, HOLDLOCK) WHERE ID = @CustomerId
SELECT TOP 1 @id = CreditTransID, @open = OutstandingBalance, @total = Total, @batch = BatchNumber FROM CreditTransaction
  WHERE CustomerID = @CustomerId AND ISNULL(TransactionNumber, -CreditTransID) = @AppTransNumber
  ORDER BY CASE WHEN OutstandingBalance * @AdjustmentAmount > 0 THEN 0 ELSE 1 END, CreditTransID
SET @left = @open - @AdjustmentAmount
IF @id IS NULL OR (@open >= 0 AND @total >= 0 AND @left < 0) OR (@open <= 0 AND @total <= 0 AND @left > 0)
  SET @says = 'Transaction %d has %s open; %s cannot be applied to it. Somebody else may have applied it meanwhile: please look again.'
ELSE IF (@open >= 0 AND @total >= 0 AND @left > @open AND @left > @total) OR (@open <= 0 AND @total <= 0 AND @left < @open AND @left < @total)
  SET @says = 'Transaction %d has %s open; %s would leave more open than it ever was. What is applied to a debit stands above zero, to a credit below zero.'
ELSE IF @AdjustmentAmount <> ROUND(@AdjustmentAmount, 2)
    AND NOT EXISTS (SELECT * FROM CreditTransaction WHERE CustomerID = @CustomerId AND OutstandingBalance <> ROUND(OutstandingBalance, 2))
  SET @says = 'Transaction %d has %s open; %s is no amount in whole cents.'
IF @says IS NOT NULL
BEGIN
  EXEC bsp_TakeBackApplications @BatchNumber, @CustomerId
  COMMIT TRANSACTION
  SET @open = ISNULL(@open, 0)
  SELECT @openText = CASE WHEN @open = ROUND(@open, 2) THEN CONVERT(varchar(40), @open) ELSE CONVERT(varchar(40), @open, 2) END,
    @amountText = CASE WHEN @AdjustmentAmount = ROUND(@AdjustmentAmount, 2) THEN CONVERT(varchar(40), @AdjustmentAmount) ELSE CONVERT(varchar(40), @AdjustmentAmount, 2) END
  RAISERROR(@says, 16, 1, @AppTransNumber, @openText, @amountText)
  RETURN
END
UPDATE CreditTransaction SET OutstandingBalance = @left WHERE CreditTransID = @id
-- A row that holds halves of a batch was applied itself: they have met that way.
IF @total = 0
  UPDATE CreditApplication SET Pending = 0 WHERE BatchNumber = @batch AND CustomerID = @CustomerId AND Pending = 1
SELECT @holder = MAX(CreditTransID) FROM CreditTransaction WHERE CustomerID = @CustomerId AND BatchNumber = @BatchNumber AND Total = 0 AND CreditTransID <> @id
  AND NOT EXISTS (SELECT * FROM CreditApplication a WHERE a.CreditTransID = CreditTransaction.CreditTransID)
INSERT INTO CreditApplication (BatchNumber, CustomerID, CreditTransID, CashierID, Amount) VALUES (@BatchNumber, @CustomerId, @id, @CashierId, @AdjustmentAmount)
SELECT @pending = SUM(Amount) FROM CreditApplication WHERE BatchNumber = @BatchNumber AND CustomerID = @CustomerId AND Pending = 1
IF @pending = 0
BEGIN
  DELETE FROM CreditTransaction WHERE CreditTransID = @holder
  UPDATE CreditApplication SET Pending = 0 WHERE BatchNumber = @BatchNumber AND CustomerID = @CustomerId AND Pending = 1
END
ELSE IF @holder IS NOT NULL
  UPDATE CreditTransaction SET OutstandingBalance = @pending WHERE CreditTransID = @holder
ELSE
BEGIN
  INSERT INTO CreditTransaction (BatchNumber, StoreID, CustomerID, CashierID, CreditID, CreditCode, Total, OutstandingBalance)
    VALUES (@BatchNumber, @StoreId, @CustomerId, @CashierId, @CreditId, @CreditCode, 0, @pending)
  SET @id = SCOPE_IDENTITY()
  UPDATE CreditTransaction SET TransactionNumber = -CreditTransID WHERE CreditTransID = @id
END
COMMIT TRANSACTION
