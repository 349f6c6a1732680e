-- The registers and what hangs on them. A null ReceiptPrinter is the machine's own default.
CREATE TABLE Register (
  ID smallint IDENTITY(1, 1) NOT NULL CONSTRAINT PK_Register PRIMARY KEY,
  PopDrawer varchar(1) NOT NULL CONSTRAINT DF_Register_PopDrawer DEFAULT '0',
  DisplayType varchar(50) NULL,
  PrinterType varchar(50) NULL,
  DisplayMsg varchar(100) NULL,
  CutCode varchar(50) NULL,
  RecptMsg varchar(255) NULL,
  ReceiptPrinter varchar(255) NULL
)
