-- Marks an import as undone; Marked is 0 when it was before.
CREATE PROCEDURE bsp_UndoImportRun @ImportID int AS
BEGIN
  SET NOCOUNT ON
  UPDATE ImportRun SET UndoneAt = GETDATE() WHERE ImportID = @ImportID AND UndoneAt IS NULL
  SELECT @@ROWCOUNT AS Marked
END
