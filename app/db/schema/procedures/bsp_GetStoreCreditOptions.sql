-- The store's terms for charge accounts, which a customer gets who has none. The first argument is the store and stays 1.
CREATE PROCEDURE bsp_GetStoreCreditOptions @StoreID int, @CustomerID int AS
SELECT FinChargeDefault, FinAPR, OverdueAfter, MinFinChg FROM StoreOptions
