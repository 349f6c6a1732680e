-- What a new store takes as payment.
IF NOT EXISTS (SELECT * FROM TenderTypes) INSERT INTO TenderTypes (TenderType, DisplayOrder) VALUES ('Cash', 0), ('Check', 1), ('Credit Card', 2), ('Debit Card', 3), ('Gift Voucher', 4), ('Store Credit', 5), ('Charge Account', 6), ('Mobile Payment', 7)
