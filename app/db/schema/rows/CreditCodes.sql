-- What adjustments of store credit are for, where a shop has not told its own.
IF NOT EXISTS (SELECT * FROM CreditCodes) INSERT INTO CreditCodes (CreditID, CreditCode, Description) VALUES (1, 'Other', 'Any other reason'), (2, 'application', 'A credit applied to a debit')
