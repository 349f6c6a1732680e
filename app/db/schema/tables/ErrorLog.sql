-- What the error logger writes: one row a failure.
CREATE TABLE ErrorLog (
  ErrorID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_ErrorLog PRIMARY KEY,
  LogDate datetime NOT NULL CONSTRAINT DF_ErrorLog_Date DEFAULT GETDATE(),
  Tag varchar(100) NOT NULL CONSTRAINT DF_ErrorLog_Tag DEFAULT '',
  ProcedureName varchar(100) NOT NULL CONSTRAINT DF_ErrorLog_Procedure DEFAULT '',
  ErrorNumber int NOT NULL CONSTRAINT DF_ErrorLog_Number DEFAULT 0,
  Description varchar(2000) NOT NULL CONSTRAINT DF_ErrorLog_Description DEFAULT '',
  RegisterID smallint NULL,
  Machine varchar(100) NULL
)
CREATE INDEX IX_ErrorLog_Date ON ErrorLog (LogDate)
