-- Keeps the searched column: the digits of the phone number.
CREATE TRIGGER Customer_Phone ON Customer AFTER INSERT, UPDATE AS
BEGIN
  SET NOCOUNT ON
  IF NOT UPDATE(PhoneNumber)
    RETURN
  UPDATE Customer
    SET CleanPhoneNumber = REPLACE(REPLACE(REPLACE(REPLACE(REPLACE(REPLACE(PhoneNumber, '(', ''), ')', ''), '-', ''), ' ', ''), '.', ''), '/', '')
    WHERE ID IN (SELECT ID FROM inserted)
END
