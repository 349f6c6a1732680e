-- What kinds of items there are. Registers know them by these numbers.
IF NOT EXISTS (SELECT * FROM ItemTypes) INSERT INTO ItemTypes (TypeId, Description) VALUES (2, 'Matrix'), (3, 'Split'), (4, 'Parent'), (5, 'Serialized'), (6, 'Standard')
