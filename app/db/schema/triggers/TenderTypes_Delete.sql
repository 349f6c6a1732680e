-- A tender that somebody paid with stays: receipts and reports name it. Without its tick the registers offer it no more.
CREATE TRIGGER TenderTypes_Delete ON TenderTypes AFTER DELETE AS
BEGIN
  SET NOCOUNT ON
  DECLARE @tender varchar(50)
  SELECT @tender = MIN(d.TenderType) FROM deleted d
    WHERE EXISTS (SELECT * FROM TransactionTender p INNER JOIN [Transaction] t ON t.TransactionNumber = p.TransactionNumber WHERE p.TenderType = d.TenderType AND t.StoreID = d.StoreID)
  IF @tender IS NULL
    RETURN
  RAISERROR('The tender type "%s" cannot be deleted: payments were made with it. Take its tick away, and the registers offer it no more.', 16, 1, @tender)
  ROLLBACK TRANSACTION
END
