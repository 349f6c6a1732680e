-- Money put into or taken out of a drawer beside sales: opening, drop, payout, no sale, closing count.
CREATE TABLE DrawerEvent (
  DrawerEventID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_DrawerEvent PRIMARY KEY,
  RegisterID smallint NOT NULL CONSTRAINT DF_DrawerEvent_Register DEFAULT 1,
  CashierID int NOT NULL CONSTRAINT FK_DrawerEvent_Cashier REFERENCES Cashier (ID),
  Time datetime NOT NULL CONSTRAINT DF_DrawerEvent_Time DEFAULT GETDATE(),
  EventType varchar(20) NOT NULL CONSTRAINT DF_DrawerEvent_Type DEFAULT 'No Sale',
  Amount money NOT NULL CONSTRAINT DF_DrawerEvent_Amount DEFAULT 0,
  Comment varchar(255) NULL
)
CREATE INDEX IX_DrawerEvent_Time ON DrawerEvent (Time)
CREATE INDEX IX_DrawerEvent_Cashier ON DrawerEvent (CashierID)
