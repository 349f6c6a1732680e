-- Remembers which fields the columns of a file went to.
CREATE PROCEDURE bsp_KeepImportHeadings @Target varchar(20), @Headings varchar(64), @Fields varchar(4000) AS
BEGIN
  SET NOCOUNT ON
  UPDATE ImportHeadings SET Fields = @Fields WHERE Target = @Target AND Headings = @Headings
  IF @@ROWCOUNT = 0
    INSERT INTO ImportHeadings (Target, Headings, Fields) VALUES (@Target, @Headings, @Fields)
END
