-- The days that went out, each once, with what they came to then.
CREATE TABLE AccountingDay (
  Day datetime NOT NULL CONSTRAINT PK_AccountingDay PRIMARY KEY,
  FileID int NOT NULL CONSTRAINT FK_AccountingDay_File REFERENCES AccountingFile (FileID),
  Receipts int NOT NULL,
  Sales money NOT NULL,
  Tax money NOT NULL,
  Tendered money NOT NULL,
  Bills money NOT NULL,
  Accounts money NOT NULL
)
CREATE INDEX IX_AccountingDay_File ON AccountingDay (FileID)
