-- Ledger rows of a deleted reason go to the base code.
CREATE TRIGGER InvReasonCodes_Delete ON InvReasonCodes AFTER DELETE AS
BEGIN
  SET NOCOUNT ON
  UPDATE InventoryLedger SET Type = (SELECT ReasonCode FROM InvReasonCodes WHERE ReasonID = 1)
    WHERE Type IN (SELECT ReasonCode FROM deleted) AND Type NOT IN (SELECT ReasonCode FROM InvReasonCodes)
END
