-- Takes the last run of statements back: its statements go, and its finance charges with them, as long as nothing was applied to one.
CREATE PROCEDURE bsp_TakeBackStatementRun @RunID int AS
SET NOCOUNT ON
SET XACT_ABORT ON
DECLARE @name varchar(255), @says varchar(255)
CREATE TABLE #charges (ID int NOT NULL PRIMARY KEY, CustomerID int NOT NULL, Amount money NOT NULL)
BEGIN TRANSACTION
INSERT INTO #charges SELECT t.CreditTransID, t.CustomerID, t.Total FROM Statement s INNER JOIN CreditTransaction t WITH (UPDLOCK, HOLDLOCK) ON t.CreditTransID = s.CreditTransID
  WHERE s.RunID = @RunID
SELECT TOP 1 @name = ISNULL(c.FirstName, '') + ' ' + ISNULL(c.LastName, '') FROM #charges h INNER JOIN CreditTransaction t ON t.CreditTransID = h.ID INNER JOIN Customer c ON c.ID = h.CustomerID
  WHERE t.OutstandingBalance <> t.Total OR EXISTS (SELECT * FROM CreditApplication a WHERE a.CreditTransID = h.ID) ORDER BY c.ID
IF NOT EXISTS (SELECT * FROM StatementRun WHERE RunID = @RunID)
  SET @says = 'That run is not there any more.'
ELSE IF EXISTS (SELECT * FROM StatementRun r INNER JOIN StatementRun l ON l.AsAt > r.AsAt WHERE r.RunID = @RunID)
  SET @says = 'Only the last run can be taken back: later statements build on this one.'
ELSE IF @name IS NOT NULL
  SET @says = 'Something was applied to the finance charge of ' + @name + ' since. The run cannot be taken back any more.'
IF @says IS NULL
BEGIN
  UPDATE Customer SET Balance = Balance - (SELECT SUM(Amount) FROM #charges h WHERE h.CustomerID = Customer.ID) WHERE ID IN (SELECT CustomerID FROM #charges)
  DELETE FROM Statement WHERE RunID = @RunID
  DELETE FROM CreditTransaction WHERE CreditTransID IN (SELECT ID FROM #charges)
  DELETE FROM StatementRun WHERE RunID = @RunID
END
COMMIT TRANSACTION
IF @says IS NOT NULL
  RAISERROR(@says, 16, 1)
