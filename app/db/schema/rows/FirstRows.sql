-- What every store starts with, an empty one too.
INSERT INTO StoreOptions (ID) VALUES (1)
INSERT INTO ItemTypes (TypeId, Description) VALUES (2, 'Matrix'), (3, 'Split'), (4, 'Parent'), (5, 'Serialized'), (6, 'Standard')
SET IDENTITY_INSERT Departments ON
INSERT INTO Departments (DepartmentID, Department) VALUES (1, 'General')
SET IDENTITY_INSERT Departments OFF
SET IDENTITY_INSERT TaxDef ON
INSERT INTO TaxDef (TaxID, Amt, Description, DefaultTax) VALUES (0, 0, 'None', 1)
SET IDENTITY_INSERT TaxDef OFF
SET IDENTITY_INSERT SalesMessages ON
INSERT INTO SalesMessages (SalesMsgID, Message) VALUES (0, '')
SET IDENTITY_INSERT SalesMessages OFF
SET IDENTITY_INSERT TierDefs ON
INSERT INTO TierDefs (TierID, TierName) VALUES (1, 'Retail')
SET IDENTITY_INSERT TierDefs OFF
SET IDENTITY_INSERT InvReasonCodes ON
INSERT INTO InvReasonCodes (ReasonID, ReasonCode) VALUES (1, 'Adjustment')
SET IDENTITY_INSERT InvReasonCodes OFF
SET IDENTITY_INSERT Suppliers ON
INSERT INTO Suppliers (SupID, Supplier) VALUES (0, 'Empty Supplier')
SET IDENTITY_INSERT Suppliers OFF
SET IDENTITY_INSERT Cashier ON
INSERT INTO Cashier (ID, Name, Password, FirstName, LastName, ManagerFlag, AllowSerialAdd, AllowUpdateCust, AllowTaxStatusChg, AllowReprint, AllowViewCost, AllowExit, AllowHold,
  AllowDropPayout, AllowNoSale, AllowPriceChg)
  VALUES (5, 'manager', 'manager', 'Store', 'Manager', 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1)
SET IDENTITY_INSERT Cashier OFF
SET IDENTITY_INSERT Register ON
INSERT INTO Register (ID, RecptMsg) VALUES (1, 'Thank you for shopping with us')
SET IDENTITY_INSERT Register OFF
INSERT INTO CreditCodes (CreditID, CreditCode, Description) VALUES (1, 'Other', 'Any other reason'), (2, 'application', 'A credit applied to a debit')
INSERT INTO BillingCycle (Cycle) VALUES (1), (5), (10), (15), (20), (25)
INSERT INTO GracePeriod (Period) VALUES (0), (5), (10), (15), (20), (30), (45), (60), (90)
INSERT INTO TenderTypes (TenderType, DisplayOrder) VALUES ('Cash', 0), ('Check', 1), ('Credit Card', 2), ('Debit Card', 3), ('Gift Voucher', 4), ('Store Credit', 5), ('Charge Account', 6), ('Mobile Payment', 7)
INSERT INTO FirstRoad DEFAULT VALUES
INSERT INTO SchemaVersion (Version) VALUES (12)
