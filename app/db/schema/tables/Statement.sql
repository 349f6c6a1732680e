-- A customer's statement as it was posted. Since is the day behind the statement before, null for the first one; BroughtForward + Charged - Paid - Credited + FinanceCharge
-- = Balance. Reckoning says how the finance charge came about; CreditTransID is its posting, null without one. The ages add up to Balance with what is Unapplied.
CREATE TABLE Statement (
  RunID int NOT NULL CONSTRAINT FK_Statement_Run REFERENCES StatementRun (RunID) ON DELETE CASCADE,
  CustomerID int NOT NULL CONSTRAINT FK_Statement_Customer REFERENCES Customer (ID),
  Since datetime NULL,
  BroughtForward money NOT NULL,
  Charged money NOT NULL,
  Paid money NOT NULL,
  Credited money NOT NULL,
  FinanceCharge money NOT NULL,
  Balance money NOT NULL,
  NotDue money NOT NULL,
  Days30 money NOT NULL,
  Days60 money NOT NULL,
  Days90 money NOT NULL,
  Over90 money NOT NULL,
  Unapplied money NOT NULL,
  Reckoning text NULL,
  CreditTransID int NULL CONSTRAINT FK_Statement_Posting REFERENCES CreditTransaction (CreditTransID),
  CONSTRAINT PK_Statement PRIMARY KEY (RunID, CustomerID)
)
CREATE INDEX IX_Statement_Customer ON Statement (CustomerID)
CREATE INDEX IX_Statement_Posting ON Statement (CreditTransID)
