-- The one row of settings of the store, updatable.
CREATE PROCEDURE bsp_StoreOptions AS
SELECT * FROM StoreOptions
