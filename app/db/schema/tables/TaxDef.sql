-- Tax classes with their rate in percent. Row 0 stands for no tax; items of a deleted class go there. No two are called alike, letter case and trailing blanks aside.
CREATE TABLE TaxDef (
  TaxID smallint IDENTITY(0, 1) NOT NULL CONSTRAINT PK_TaxDef PRIMARY KEY,
  Amt float NOT NULL CONSTRAINT DF_TaxDef_Amt DEFAULT 0,
  Description varchar(50) NOT NULL CONSTRAINT DF_TaxDef_Description DEFAULT 'Tax Type',
  DefaultTax bit NOT NULL CONSTRAINT DF_TaxDef_Default DEFAULT 0
)
CREATE UNIQUE INDEX IX_TaxDef_Description ON TaxDef (Description)
