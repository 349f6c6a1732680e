-- Price tiers. Row 1 is "Retail"; customers of a deleted tier go there, its prices go with it.
CREATE TABLE TierDefs (
  TierID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_TierDefs PRIMARY KEY,
  TierName varchar(50) NOT NULL CONSTRAINT DF_TierDefs_Name DEFAULT 'Tier Name'
)
