-- How far a new store is on the way to its first sale, in one row. A tender that was chosen has a name of its own; a register that
-- was set up differs from the one that every store starts with.
CREATE PROCEDURE bsp_FirstRoad AS
SELECT o.Name AS StoreName, ISNULL(o.Address1, '') + ISNULL(o.City, '') AS Address,
  (SELECT COUNT(*) FROM TaxDef WHERE TaxID <> 0) AS TaxClasses,
  (SELECT COUNT(*) FROM Departments WHERE DepartmentID <> 1) AS Departments,
  (SELECT COUNT(*) FROM TenderTypes WHERE StoreID = 1 AND Available = 1) AS Tenders,
  (SELECT COUNT(*) FROM TenderTypes WHERE StoreID = 1 AND DisplayName IS NOT NULL) AS TendersChosen,
  (SELECT COUNT(*) FROM Cashier) AS Cashiers,
  (SELECT COUNT(*) FROM Cashier WHERE ID = 5 AND Password = 'manager') AS FirstPassword,
  (SELECT COUNT(*) FROM Register) AS Registers,
  (SELECT COUNT(*) FROM Register WHERE ID <> 1 OR PrinterType IS NOT NULL OR ReceiptPrinter IS NOT NULL OR DisplayType IS NOT NULL
    OR ISNULL(RecptMsg, '') <> 'Thank you for shopping with us') AS RegistersSetUp,
  (SELECT COUNT(*) FROM Item WHERE SKU NOT LIKE '$%' AND TypeID <> 4) AS Items
FROM StoreOptions o
