-- Who may work on the registers, and what each may do there. Row 5 is the default manager account.
CREATE TABLE Cashier (
  ID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_Cashier PRIMARY KEY,
  Name varchar(50) NOT NULL CONSTRAINT DF_Cashier_Name DEFAULT 'Name',
  Password varchar(50) NOT NULL CONSTRAINT DF_Cashier_Password DEFAULT 'Passcode',
  StoreID int NOT NULL CONSTRAINT DF_Cashier_Store DEFAULT 1,
  FirstName varchar(50) NULL,
  LastName varchar(50) NULL,
  DrawerLimit money NOT NULL CONSTRAINT DF_Cashier_DrawerLimit DEFAULT 1000,
  ReturnLimit money NOT NULL CONSTRAINT DF_Cashier_ReturnLimit DEFAULT 100,
  ManagerFlag bit NOT NULL CONSTRAINT DF_Cashier_Manager DEFAULT 0,
  AllowSerialAdd bit NOT NULL CONSTRAINT DF_Cashier_SerialAdd DEFAULT 0,
  AllowUpdateCust bit NOT NULL CONSTRAINT DF_Cashier_UpdateCust DEFAULT 0,
  AllowTaxStatusChg bit NOT NULL CONSTRAINT DF_Cashier_TaxStatus DEFAULT 0,
  AllowReprint bit NOT NULL CONSTRAINT DF_Cashier_Reprint DEFAULT 0,
  AllowViewCost bit NOT NULL CONSTRAINT DF_Cashier_ViewCost DEFAULT 0,
  AllowExit bit NOT NULL CONSTRAINT DF_Cashier_Exit DEFAULT 0,
  AllowHold bit NOT NULL CONSTRAINT DF_Cashier_Hold DEFAULT 0,
  AllowDropPayout bit NOT NULL CONSTRAINT DF_Cashier_DropPayout DEFAULT 0,
  AllowNoSale bit NOT NULL CONSTRAINT DF_Cashier_NoSale DEFAULT 0,
  AllowPriceChg bit NOT NULL CONSTRAINT DF_Cashier_PriceChg DEFAULT 0
)
