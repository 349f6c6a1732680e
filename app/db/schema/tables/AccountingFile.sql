-- What went out to accounting, byte for byte.
CREATE TABLE AccountingFile (
  FileID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_AccountingFile PRIMARY KEY,
  Made datetime NOT NULL CONSTRAINT DF_AccountingFile_Made DEFAULT GETDATE(),
  Bytes int NOT NULL,
  Content image NOT NULL
)
