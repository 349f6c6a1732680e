-- The one row of the store's options.
IF NOT EXISTS (SELECT * FROM StoreOptions) INSERT INTO StoreOptions (ID) VALUES (1)
