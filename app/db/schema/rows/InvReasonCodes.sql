-- The reason of adjustments without another.
IF NOT EXISTS (SELECT * FROM InvReasonCodes WHERE ReasonID = 1)
BEGIN
  SET IDENTITY_INSERT InvReasonCodes ON
  INSERT INTO InvReasonCodes (ReasonID, ReasonCode) VALUES (1, 'Adjustment')
  SET IDENTITY_INSERT InvReasonCodes OFF
END
