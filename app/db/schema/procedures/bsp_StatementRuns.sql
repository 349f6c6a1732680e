-- The posted runs of statements, the last one first.
CREATE PROCEDURE bsp_StatementRuns AS
SELECT r.RunID, r.AsAt, r.Posted, (SELECT COUNT(*) FROM Statement s WHERE s.RunID = r.RunID) AS Statements,
  (SELECT SUM(s.FinanceCharge) FROM Statement s WHERE s.RunID = r.RunID) AS FinanceCharges, (SELECT SUM(s.Balance) FROM Statement s WHERE s.RunID = r.RunID) AS Balances
  FROM StatementRun r ORDER BY r.AsAt DESC
