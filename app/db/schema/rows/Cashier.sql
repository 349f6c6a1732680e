-- The manager's account, with the password that every store starts with.
IF NOT EXISTS (SELECT * FROM Cashier WHERE ID = 5)
BEGIN
  SET IDENTITY_INSERT Cashier ON
  INSERT INTO Cashier (ID, Name, Password, FirstName, LastName, ManagerFlag, AllowSerialAdd, AllowUpdateCust, AllowTaxStatusChg, AllowReprint, AllowViewCost, AllowExit,
    AllowHold, AllowDropPayout, AllowNoSale, AllowPriceChg)
    VALUES (5, 'manager', 'manager', 'Store', 'Manager', 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1)
  SET IDENTITY_INSERT Cashier OFF
END
