-- Adjustments of a deleted reason go to the base code; movements of registers and orders that are called like it stay what they are.
CREATE TRIGGER InvReasonCodes_Delete ON InvReasonCodes AFTER DELETE AS
BEGIN
  SET NOCOUNT ON
  UPDATE InventoryLedger SET Type = (SELECT ReasonCode FROM InvReasonCodes WHERE ReasonID = 1)
    WHERE Kind = 'Adjustment' AND Type IN (SELECT ReasonCode FROM deleted) AND Type NOT IN (SELECT ReasonCode FROM InvReasonCodes)
END
