-- To which account of accounting an amount goes, where it is not the one that it has at first: what it is for, and the code of that ("Tender", "Cash").
CREATE TABLE AccountMap (
  Purpose varchar(20) NOT NULL,
  Code varchar(100) NOT NULL CONSTRAINT DF_AccountMap_Code DEFAULT '',
  Account varchar(200) NOT NULL,
  AccountType varchar(10) NOT NULL,
  CONSTRAINT PK_AccountMap PRIMARY KEY (Purpose, Code)
)
