-- Opens a posted run of statements as at a day, with a batch of its own. A day is posted once, when it is over, and none before a day that was.
CREATE PROCEDURE bsp_NewStatementRun @AsAt datetime, @StoreId int, @CashierId int AS
SET NOCOUNT ON
SET XACT_ABORT ON
DECLARE @last datetime, @day varchar(10), @posting int, @batch int, @run int
IF @AsAt >= CONVERT(datetime, CONVERT(varchar(8), GETDATE(), 112))
BEGIN
  SET @day = CONVERT(varchar(10), @AsAt, 101)
  RAISERROR('%s is not over yet: what is still posted on it would stand on no statement. Post it from the next day on.', 16, 1, @day)
  RETURN
END
BEGIN TRANSACTION
SELECT @last = MAX(AsAt) FROM StatementRun WITH (UPDLOCK, HOLDLOCK)
-- Whoever posts to an account waits until the run has ended.
SELECT @posting = MAX(CreditTransID) FROM CreditTransaction WITH (UPDLOCK, HOLDLOCK)
IF @last >= @AsAt
BEGIN
  COMMIT TRANSACTION
  SET @day = CONVERT(varchar(10), @last, 101)
  RAISERROR('Statements as at %s were posted already. Print them again, or take that run back.', 16, 1, @day)
  RETURN
END
INSERT INTO batch (StoreID, CashierID, Closed) VALUES (@StoreId, @CashierId, GETDATE())
SET @batch = SCOPE_IDENTITY()
INSERT INTO StatementRun (AsAt, StoreID, CashierID, BatchNumber) VALUES (@AsAt, @StoreId, @CashierId, @batch)
SET @run = SCOPE_IDENTITY()
COMMIT TRANSACTION
SELECT @run AS RunID, @batch AS BatchNumber
