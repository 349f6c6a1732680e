-- Opens an import; gives its key.
CREATE PROCEDURE bsp_NewImportRun @Target varchar(20), @FileName varchar(255), @FileHash varchar(64), @Words varchar(255) AS
BEGIN
  SET NOCOUNT ON
  INSERT INTO ImportRun (Target, FileName, FileHash, Words) VALUES (@Target, @FileName, @FileHash, @Words)
  SELECT CAST(SCOPE_IDENTITY() AS int) AS ImportID
END
