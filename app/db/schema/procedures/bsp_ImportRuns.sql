-- The imports, the last one first.
CREATE PROCEDURE bsp_ImportRuns AS
SELECT ImportID, MadeAt, Target, FileName, Words, UndoneAt FROM ImportRun ORDER BY ImportID DESC
