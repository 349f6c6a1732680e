-- Messages that a register shows when an item is sold. Row 0 is the base message, none at all.
CREATE TABLE SalesMessages (
  SalesMsgID int IDENTITY(0, 1) NOT NULL CONSTRAINT PK_SalesMessages PRIMARY KEY,
  Message varchar(255) NOT NULL CONSTRAINT DF_SalesMessages_Message DEFAULT ''
)
