-- A register that has recorded something stays, with the reason told. No foreign key guards it: a till posts its sales also while nobody has given it a row here.
CREATE TRIGGER Register_Delete ON Register AFTER DELETE AS
BEGIN
  SET NOCOUNT ON
  DECLARE @id int
  SELECT @id = MIN(d.ID) FROM deleted d
    WHERE EXISTS (SELECT * FROM [Transaction] t WHERE t.RegisterID = d.ID) OR EXISTS (SELECT * FROM DrawerEvent e WHERE e.RegisterID = d.ID)
      OR EXISTS (SELECT * FROM CashierEvent e WHERE e.RegisterID = d.ID) OR EXISTS (SELECT * FROM batch b WHERE b.RegisterID = d.ID)
  IF @id IS NULL
    RETURN
  ROLLBACK TRANSACTION
  RAISERROR('Register %d cannot be deleted: it has recorded sales or drawer events, which reports still show.', 16, 1, @id)
END
