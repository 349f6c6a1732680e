-- A change of many prices at once: when it was made, what was done in words, and when it was undone (null while it stands).
CREATE TABLE PriceChange (
  PriceChangeID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_PriceChange PRIMARY KEY,
  MadeAt datetime NOT NULL CONSTRAINT DF_PriceChange_MadeAt DEFAULT GETDATE(),
  Words varchar(255) NOT NULL CONSTRAINT DF_PriceChange_Words DEFAULT '',
  UndoneAt datetime NULL
)
