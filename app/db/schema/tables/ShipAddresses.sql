-- Where a customer wants goods sent; goes with the customer.
CREATE TABLE ShipAddresses (
  CustomerID int NOT NULL CONSTRAINT PK_ShipAddresses PRIMARY KEY CONSTRAINT FK_ShipAddresses_Customer REFERENCES Customer (ID) ON DELETE CASCADE,
  Attn varchar(100) NULL,
  Company varchar(100) NULL,
  Email varchar(100) NULL,
  Address varchar(100) NULL,
  Address2 varchar(100) NULL,
  City varchar(50) NULL,
  State varchar(2) NULL,
  Zip varchar(20) NULL,
  FirstName varchar(50) NULL,
  LastName varchar(50) NULL,
  PhoneNumber varchar(30) NULL,
  FaxNumber varchar(30) NULL
)
