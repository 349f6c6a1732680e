-- Reasons of a posting to a customer's account. 2 is the application of a credit to a debit.
CREATE TABLE CreditCodes (
  CreditID smallint NOT NULL CONSTRAINT PK_CreditCodes PRIMARY KEY,
  CreditCode varchar(25) NOT NULL CONSTRAINT DF_CreditCodes_Code DEFAULT 'Credit Adjustment Code',
  Description varchar(255) NULL
)
