-- What the store's views, procedures, triggers and first rows were made from: a fingerprint of each file, and the program's version that put it there.
CREATE TABLE SchemaContent (
  Name varchar(128) NOT NULL CONSTRAINT PK_SchemaContent PRIMARY KEY,
  Fingerprint varchar(16) NOT NULL,
  Program varchar(20) NOT NULL
)
