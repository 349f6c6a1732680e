-- The last import of a file with the same content that was not undone.
CREATE PROCEDURE bsp_ImportLike @Target varchar(20), @FileHash varchar(64) AS
SELECT TOP 1 ImportID, MadeAt, FileName FROM ImportRun WHERE FileHash = @FileHash AND Target = @Target AND UndoneAt IS NULL ORDER BY ImportID DESC
