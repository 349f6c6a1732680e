-- The message of items without one.
IF NOT EXISTS (SELECT * FROM SalesMessages WHERE SalesMsgID = 0)
BEGIN
  SET IDENTITY_INSERT SalesMessages ON
  INSERT INTO SalesMessages (SalesMsgID, Message) VALUES (0, '')
  SET IDENTITY_INSERT SalesMessages OFF
END
