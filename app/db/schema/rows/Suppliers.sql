-- The supplier of items that have none.
IF NOT EXISTS (SELECT * FROM Suppliers WHERE SupID = 0)
BEGIN
  SET IDENTITY_INSERT Suppliers ON
  INSERT INTO Suppliers (SupID, Supplier) VALUES (0, 'Empty Supplier')
  SET IDENTITY_INSERT Suppliers OFF
END
