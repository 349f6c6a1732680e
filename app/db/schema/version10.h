#pragma once

namespace merchantry::db {

// What brings a store of version 9 to version 10; the tables that are new stand before it. A batch that runs over a store which has a
// change already leaves that alone.
constexpr const char* kToVersion10 = R"sql(
-- Tax classes that are called like an earlier one get a number behind their name.
IF NOT EXISTS (SELECT * FROM sys.indexes WHERE name = 'IX_TaxDef_Description')
BEGIN
  DECLARE @tax smallint, @name varchar(50), @behind varchar(10), @number int
  SELECT @tax = MIN(t.TaxID) FROM TaxDef t WHERE EXISTS (SELECT * FROM TaxDef o WHERE o.Description = t.Description AND o.TaxID < t.TaxID)
  WHILE @tax IS NOT NULL
  BEGIN
    SELECT @name = RTRIM(Description), @number = 2, @behind = ' (2)' FROM TaxDef WHERE TaxID = @tax
    WHILE EXISTS (SELECT * FROM TaxDef WHERE Description = LEFT(@name, 50 - LEN(@behind)) + @behind)
    BEGIN
      SET @number = @number + 1
      SET @behind = ' (' + CAST(@number AS varchar(6)) + ')'
    END
    UPDATE TaxDef SET Description = LEFT(@name, 50 - LEN(@behind)) + @behind WHERE TaxID = @tax
    SELECT @tax = MIN(t.TaxID) FROM TaxDef t WHERE EXISTS (SELECT * FROM TaxDef o WHERE o.Description = t.Description AND o.TaxID < t.TaxID)
  END
  CREATE UNIQUE INDEX IX_TaxDef_Description ON TaxDef (Description)
END
-- One class is the default.
UPDATE TaxDef SET DefaultTax = 0 WHERE DefaultTax = 1 AND TaxID < (SELECT MAX(TaxID) FROM TaxDef WHERE DefaultTax = 1)
UPDATE TaxDef SET DefaultTax = 1 WHERE TaxID = 0 AND NOT EXISTS (SELECT * FROM TaxDef WHERE DefaultTax = 1)
-- A tender that shops came to want. Registers do not offer it before somebody ticks it.
IF NOT EXISTS (SELECT * FROM TenderTypes WHERE StoreID = 1 AND TenderType = 'Mobile Payment')
  INSERT INTO TenderTypes (TenderType, Available, DisplayOrder) SELECT 'Mobile Payment', 0, ISNULL(MAX(DisplayOrder), -1) + 1 FROM TenderTypes WHERE StoreID = 1
-- A shop that has items has been set up.
IF NOT EXISTS (SELECT * FROM FirstRoad)
  INSERT INTO FirstRoad (PutAway) SELECT CASE WHEN EXISTS (SELECT * FROM Item WHERE SKU NOT LIKE '$%') THEN GETDATE() END
)sql";

} // namespace merchantry::db
