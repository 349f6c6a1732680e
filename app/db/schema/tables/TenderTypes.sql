-- Means of payment that the registers know; the display order counts from 0.
CREATE TABLE TenderTypes (
  StoreID int NOT NULL CONSTRAINT DF_TenderTypes_Store DEFAULT 1,
  TenderType varchar(50) NOT NULL,
  DisplayName varchar(50) NULL,
  Available bit NOT NULL CONSTRAINT DF_TenderTypes_Available DEFAULT 1,
  DisplayOrder smallint NOT NULL CONSTRAINT DF_TenderTypes_Order DEFAULT 0,
  CONSTRAINT PK_TenderTypes PRIMARY KEY (StoreID, TenderType)
)
