-- The version of this schema that a store file has, and when it was brought there. Upgrades add a row each.
CREATE TABLE SchemaVersion (
  Version int NOT NULL CONSTRAINT PK_SchemaVersion PRIMARY KEY,
  UpgradeDate datetime NOT NULL CONSTRAINT DF_SchemaVersion_Date DEFAULT GETDATE()
)
