-- A posted run of statements: the day it was drawn up as at, the batch of its finance charges, and the last posting to an account that was there. What is posted later stands on
-- the next statement, whatever its date. A day is posted once; a run that is taken back goes with its statements.
CREATE TABLE StatementRun (
  RunID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_StatementRun PRIMARY KEY,
  AsAt datetime NOT NULL CONSTRAINT UQ_StatementRun_AsAt UNIQUE,
  Posted datetime NOT NULL CONSTRAINT DF_StatementRun_Posted DEFAULT GETDATE(),
  StoreID int NOT NULL CONSTRAINT DF_StatementRun_Store DEFAULT 1,
  CashierID int NOT NULL CONSTRAINT DF_StatementRun_Cashier DEFAULT 5 CONSTRAINT FK_StatementRun_Cashier REFERENCES Cashier (ID),
  BatchNumber int NOT NULL CONSTRAINT FK_StatementRun_batch REFERENCES batch (BatchNumber),
  LastPosting int NOT NULL CONSTRAINT DF_StatementRun_LastPosting DEFAULT 0
)
CREATE INDEX IX_StatementRun_Cashier ON StatementRun (CashierID)
CREATE INDEX IX_StatementRun_Batch ON StatementRun (BatchNumber)
