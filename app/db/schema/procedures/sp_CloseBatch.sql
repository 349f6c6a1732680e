-- Closes a batch; -1 is none. What was applied in it by half, a credit without its debit or the other way round, is taken back.
CREATE PROCEDURE sp_CloseBatch @BatchNUmber int, @StoreId int, @CashierId int AS
SET NOCOUNT ON
SET XACT_ABORT ON
DECLARE @customer int
BEGIN TRANSACTION
SELECT @customer = MIN(CustomerID) FROM CreditApplication WITH (UPDLOCK, HOLDLOCK) WHERE BatchNumber = @BatchNUmber AND Pending = 1
WHILE @customer IS NOT NULL
BEGIN
  EXEC bsp_TakeBackApplications @BatchNUmber, @customer
  SELECT @customer = MIN(CustomerID) FROM CreditApplication WHERE BatchNumber = @BatchNUmber AND Pending = 1 AND CustomerID > @customer
END
UPDATE batch SET Closed = GETDATE() WHERE BatchNumber = @BatchNUmber AND Closed IS NULL
COMMIT TRANSACTION
