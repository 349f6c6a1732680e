-- When a cashier logged on and off, and what a manager allowed.
CREATE TABLE CashierEvent (
  CashierEventID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_CashierEvent PRIMARY KEY,
  CashierID int NOT NULL CONSTRAINT FK_CashierEvent_Cashier REFERENCES Cashier (ID),
  RegisterID smallint NOT NULL CONSTRAINT DF_CashierEvent_Register DEFAULT 1,
  Time datetime NOT NULL CONSTRAINT DF_CashierEvent_Time DEFAULT GETDATE(),
  EventType varchar(20) NOT NULL CONSTRAINT DF_CashierEvent_Type DEFAULT 'Log On',
  Comment varchar(255) NULL
)
CREATE INDEX IX_CashierEvent_Time ON CashierEvent (Time)
CREATE INDEX IX_CashierEvent_Cashier ON CashierEvent (CashierID)
