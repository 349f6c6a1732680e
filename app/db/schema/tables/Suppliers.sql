-- Who delivers. Row 0 is the Empty Supplier.
CREATE TABLE Suppliers (
  SupID smallint IDENTITY(0, 1) NOT NULL CONSTRAINT PK_Suppliers PRIMARY KEY,
  Supplier varchar(100) NOT NULL CONSTRAINT DF_Suppliers_Name DEFAULT '',
  Address1 varchar(100) NULL,
  Address2 varchar(100) NULL,
  Address3 varchar(100) NULL,
  City varchar(50) NULL,
  State varchar(2) NULL,
  Zip varchar(20) NULL,
  Phone varchar(30) NULL,
  Fax varchar(30) NULL,
  Email varchar(100) NOT NULL CONSTRAINT DF_Suppliers_Email DEFAULT '',
  AccountNumber varchar(50) NULL,
  SalesRep varchar(100) NULL,
  Website varchar(255) NULL
)
