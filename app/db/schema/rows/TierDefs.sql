-- The price tier of everybody.
IF NOT EXISTS (SELECT * FROM TierDefs WHERE TierID = 1)
BEGIN
  SET IDENTITY_INSERT TierDefs ON
  INSERT INTO TierDefs (TierID, TierName) VALUES (1, 'Retail')
  SET IDENTITY_INSERT TierDefs OFF
END
