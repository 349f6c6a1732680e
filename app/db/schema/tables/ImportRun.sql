-- A file that was imported: when, into what, what became of it in words, and when it was undone (null while it stands). FileHash tells a file by what it holds.
CREATE TABLE ImportRun (
  ImportID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_ImportRun PRIMARY KEY,
  MadeAt datetime NOT NULL CONSTRAINT DF_ImportRun_MadeAt DEFAULT GETDATE(),
  Target varchar(20) NOT NULL,
  FileName varchar(255) NOT NULL CONSTRAINT DF_ImportRun_File DEFAULT '',
  FileHash varchar(64) NOT NULL CONSTRAINT DF_ImportRun_Hash DEFAULT '',
  Words varchar(255) NOT NULL CONSTRAINT DF_ImportRun_Words DEFAULT '',
  UndoneAt datetime NULL
)
CREATE INDEX IX_ImportRun_Hash ON ImportRun (FileHash)
