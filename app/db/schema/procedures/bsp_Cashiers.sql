-- The cashiers for the list and for the screen that changes one of them. What the list shows stands first; the password stands last and is shown by neither.
CREATE PROCEDURE bsp_Cashiers AS
SELECT ID, Name, LTRIM(RTRIM(ISNULL(FirstName, '') + ' ' + ISNULL(LastName, ''))) AS Person, ManagerFlag, StoreID, FirstName, LastName, DrawerLimit, ReturnLimit,
  AllowSerialAdd, AllowUpdateCust, AllowTaxStatusChg, AllowReprint, AllowViewCost, AllowExit, AllowHold, AllowDropPayout, AllowNoSale, AllowPriceChg, Password
FROM Cashier ORDER BY ID
