-- Ends a run of statements, its finance charges posted: what comes to the accounts from here on stands on the next statements.
CREATE PROCEDURE bsp_EndStatementRun @RunID int AS
UPDATE StatementRun SET LastPosting = ISNULL((SELECT MAX(CreditTransID) FROM CreditTransaction), 0) WHERE RunID = @RunID
