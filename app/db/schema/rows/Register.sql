-- A store without any register has its first.
IF NOT EXISTS (SELECT * FROM Register)
BEGIN
  SET IDENTITY_INSERT Register ON
  INSERT INTO Register (ID, RecptMsg) VALUES (1, 'Thank you for shopping with us')
  SET IDENTITY_INSERT Register OFF
END
