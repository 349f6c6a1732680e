-- What the criteria screen offers for each report: the columns of its query under the names that users know, in the order of the list.
-- A column that is a date (1) is compared by the day.
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('DailySales', '[Transaction].Time', 'Date', 1, 1),
  ('DailySales', '[Transaction].RegisterID', 'Register', 0, 2),
  ('DailySales', 'Cashier.Name', 'Cashier', 0, 3),
  ('DailySales', 'Departments.Department', 'Department', 0, 4),
  ('DailySales', 'Item.MatrixSKU', 'SKU', 0, 5),
  ('DailySales', 'Item.Name', 'Item name', 0, 6),
  ('DailySales', '[Transaction].TransType', 'Sale or return', 0, 7),
  ('DailySales', 'Customer.LastName', 'Customer last name', 0, 8),
  ('DailySales', 'TransactionEntry.Quantity * TransactionEntry.FullPrice - TransactionEntry.Discount', 'Amount', 0, 9)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('DailyProfit', '[Transaction].Time', 'Date', 1, 1),
  ('DailyProfit', '[Transaction].RegisterID', 'Register', 0, 2),
  ('DailyProfit', 'Cashier.Name', 'Cashier', 0, 3),
  ('DailyProfit', 'Departments.Department', 'Department', 0, 4),
  ('DailyProfit', 'Item.MatrixSKU', 'SKU', 0, 5),
  ('DailyProfit', 'Item.Name', 'Item name', 0, 6),
  ('DailyProfit', '[Transaction].TransType', 'Sale or return', 0, 7),
  ('DailyProfit', 'Customer.LastName', 'Customer last name', 0, 8),
  ('DailyProfit', 'TransactionEntry.Quantity * TransactionEntry.FullPrice - TransactionEntry.Discount', 'Amount', 0, 9)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('SalesByItem', 'Item.Name', 'Item name', 0, 1),
  ('SalesByItem', 'Item.MatrixSKU', 'SKU', 0, 2),
  ('SalesByItem', 'Item.SKU', 'Parent SKU', 0, 3),
  ('SalesByItem', 'Departments.Department', 'Department', 0, 4),
  ('SalesByItem', '[Transaction].Time', 'Date', 1, 5),
  ('SalesByItem', '[Transaction].RegisterID', 'Register', 0, 6),
  ('SalesByItem', 'Cashier.Name', 'Cashier', 0, 7),
  ('SalesByItem', '[Transaction].TransType', 'Sale or return', 0, 8),
  ('SalesByItem', 'TransactionEntry.Quantity', 'Quantity', 0, 9),
  ('SalesByItem', 'TransactionEntry.Quantity * TransactionEntry.FullPrice - TransactionEntry.Discount', 'Amount', 0, 10)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('ProfitByItem', 'Item.Name', 'Item name', 0, 1),
  ('ProfitByItem', 'Item.MatrixSKU', 'SKU', 0, 2),
  ('ProfitByItem', 'Item.SKU', 'Parent SKU', 0, 3),
  ('ProfitByItem', 'Departments.Department', 'Department', 0, 4),
  ('ProfitByItem', '[Transaction].Time', 'Date', 1, 5),
  ('ProfitByItem', '[Transaction].RegisterID', 'Register', 0, 6),
  ('ProfitByItem', 'Cashier.Name', 'Cashier', 0, 7),
  ('ProfitByItem', '[Transaction].TransType', 'Sale or return', 0, 8),
  ('ProfitByItem', 'TransactionEntry.Quantity', 'Quantity', 0, 9),
  ('ProfitByItem', 'TransactionEntry.Quantity * TransactionEntry.FullPrice - TransactionEntry.Discount', 'Amount', 0, 10)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('DeptSales', 'Departments.Department', 'Department', 0, 1),
  ('DeptSales', '[Transaction].Time', 'Date', 1, 2),
  ('DeptSales', 'Item.MatrixSKU', 'SKU', 0, 3),
  ('DeptSales', 'Item.SKU', 'Parent SKU', 0, 4),
  ('DeptSales', 'Item.Name', 'Item name', 0, 5),
  ('DeptSales', '[Transaction].RegisterID', 'Register', 0, 6),
  ('DeptSales', 'Cashier.Name', 'Cashier', 0, 7),
  ('DeptSales', '[Transaction].TransType', 'Sale or return', 0, 8),
  ('DeptSales', 'TransactionEntry.Quantity', 'Quantity', 0, 9),
  ('DeptSales', 'TransactionEntry.Quantity * TransactionEntry.FullPrice - TransactionEntry.Discount', 'Amount', 0, 10)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('ProfitByDept', 'Departments.Department', 'Department', 0, 1),
  ('ProfitByDept', '[Transaction].Time', 'Date', 1, 2),
  ('ProfitByDept', 'Item.MatrixSKU', 'SKU', 0, 3),
  ('ProfitByDept', 'Item.Name', 'Item name', 0, 4),
  ('ProfitByDept', '[Transaction].RegisterID', 'Register', 0, 5),
  ('ProfitByDept', 'Cashier.Name', 'Cashier', 0, 6),
  ('ProfitByDept', '[Transaction].TransType', 'Sale or return', 0, 7),
  ('ProfitByDept', 'TransactionEntry.Quantity * TransactionEntry.FullPrice - TransactionEntry.Discount', 'Amount', 0, 8)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('SalesByCust', 'Customer.LastName', 'Last name', 0, 1),
  ('SalesByCust', 'Customer.FirstName', 'First name', 0, 2),
  ('SalesByCust', 'Customer.Company', 'Company', 0, 3),
  ('SalesByCust', 'Customer.AccountNumber', 'Account number', 0, 4),
  ('SalesByCust', 'Customer.City', 'City', 0, 5),
  ('SalesByCust', 'Customer.State', 'State', 0, 6),
  ('SalesByCust', 'Customer.Zip', 'Zip code', 0, 7),
  ('SalesByCust', 'TierDefs.TierName', 'Price tier', 0, 8),
  ('SalesByCust', '[Transaction].Time', 'Date', 1, 9),
  ('SalesByCust', 'Departments.Department', 'Department', 0, 10),
  ('SalesByCust', 'Item.Name', 'Item name', 0, 11),
  ('SalesByCust', '[Transaction].RegisterID', 'Register', 0, 12),
  ('SalesByCust', 'TransactionEntry.Quantity * TransactionEntry.FullPrice - TransactionEntry.Discount', 'Amount', 0, 13)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('ProfitByCust', 'Customer.LastName', 'Last name', 0, 1),
  ('ProfitByCust', 'Customer.FirstName', 'First name', 0, 2),
  ('ProfitByCust', 'Customer.Company', 'Company', 0, 3),
  ('ProfitByCust', 'Customer.AccountNumber', 'Account number', 0, 4),
  ('ProfitByCust', 'Customer.City', 'City', 0, 5),
  ('ProfitByCust', 'Customer.State', 'State', 0, 6),
  ('ProfitByCust', 'Customer.Zip', 'Zip code', 0, 7),
  ('ProfitByCust', 'TierDefs.TierName', 'Price tier', 0, 8),
  ('ProfitByCust', '[Transaction].Time', 'Date', 1, 9),
  ('ProfitByCust', 'Departments.Department', 'Department', 0, 10),
  ('ProfitByCust', 'Item.Name', 'Item name', 0, 11),
  ('ProfitByCust', '[Transaction].RegisterID', 'Register', 0, 12),
  ('ProfitByCust', 'TransactionEntry.Quantity * TransactionEntry.FullPrice - TransactionEntry.Discount', 'Amount', 0, 13)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('DailyTaxes', '[Transaction].Time', 'Date', 1, 1),
  ('DailyTaxes', 'TaxDef.Description', 'Tax class', 0, 2),
  ('DailyTaxes', 'ISNULL(TransactionTax.Rate, TaxDef.Amt)', 'Rate', 0, 3),
  ('DailyTaxes', '[Transaction].RegisterID', 'Register', 0, 4),
  ('DailyTaxes', 'Cashier.Name', 'Cashier', 0, 5),
  ('DailyTaxes', '[Transaction].TransType', 'Sale or return', 0, 6)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('DailyTaxESales', '[Transaction].Time', 'Date', 1, 1),
  ('DailyTaxESales', 'Customer.LastName', 'Last name', 0, 2),
  ('DailyTaxESales', 'Customer.Company', 'Company', 0, 3),
  ('DailyTaxESales', 'Customer.ResaleNo', 'Resale number', 0, 4),
  ('DailyTaxESales', '[Transaction].RegisterID', 'Register', 0, 5),
  ('DailyTaxESales', 'Cashier.Name', 'Cashier', 0, 6),
  ('DailyTaxESales', '[Transaction].SubTotal', 'Amount', 0, 7),
  ('DailyTaxESales', '[Transaction].TransactionNumber', 'Transaction', 0, 8)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('RegisterAnalysis', '[Transaction].RegisterID', 'Register', 0, 1),
  ('RegisterAnalysis', 'Cashier.Name', 'Cashier', 0, 2),
  ('RegisterAnalysis', '[Transaction].Time', 'Date', 1, 3),
  ('RegisterAnalysis', 'Departments.Department', 'Department', 0, 4),
  ('RegisterAnalysis', '[Transaction].TransType', 'Sale or return', 0, 5),
  ('RegisterAnalysis', 'TransactionEntry.Quantity * TransactionEntry.FullPrice - TransactionEntry.Discount', 'Amount', 0, 6)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('TenderAnalysis', '[Transaction].RegisterID', 'Register', 0, 1),
  ('TenderAnalysis', '[Transaction].TenderType', 'Tender', 0, 2),
  ('TenderAnalysis', '[Transaction].Time', 'Date', 1, 3),
  ('TenderAnalysis', 'Cashier.Name', 'Cashier', 0, 4),
  ('TenderAnalysis', '[Transaction].Amount', 'Amount', 0, 5)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('CashierList', 'Cashier.Name', 'Login', 0, 1),
  ('CashierList', 'Cashier.ID', 'Number', 0, 2),
  ('CashierList', 'Cashier.FirstName', 'First name', 0, 3),
  ('CashierList', 'Cashier.LastName', 'Last name', 0, 4),
  ('CashierList', 'Cashier.ManagerFlag', 'Manager (1 or 0)', 0, 5),
  ('CashierList', 'Cashier.DrawerLimit', 'Drawer limit', 0, 6),
  ('CashierList', 'Cashier.ReturnLimit', 'Return limit', 0, 7)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('CashierLog', 'CashierEvent.Time', 'Date', 1, 1),
  ('CashierLog', 'Cashier.Name', 'Cashier', 0, 2),
  ('CashierLog', 'CashierEvent.RegisterID', 'Register', 0, 3),
  ('CashierLog', 'CashierEvent.EventType', 'Event', 0, 4),
  ('CashierLog', 'CashierEvent.Amount', 'Amount', 0, 5)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('ErrorLog', 'ErrorLog.LogDate', 'Date', 1, 1),
  ('ErrorLog', 'ErrorLog.Tag', 'Where', 0, 2),
  ('ErrorLog', 'ErrorLog.ProcedureName', 'Procedure', 0, 3),
  ('ErrorLog', 'ErrorLog.ErrorNumber', 'Number', 0, 4),
  ('ErrorLog', 'ErrorLog.Description', 'What', 0, 5),
  ('ErrorLog', 'ErrorLog.RegisterID', 'Register', 0, 6),
  ('ErrorLog', 'ErrorLog.Machine', 'Machine', 0, 7)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('CustomerList', 'Customer.LastName', 'Last name', 0, 1),
  ('CustomerList', 'Customer.FirstName', 'First name', 0, 2),
  ('CustomerList', 'Customer.Company', 'Company', 0, 3),
  ('CustomerList', 'Customer.AccountNumber', 'Account number', 0, 4),
  ('CustomerList', 'Customer.City', 'City', 0, 5),
  ('CustomerList', 'Customer.State', 'State', 0, 6),
  ('CustomerList', 'Customer.Zip', 'Zip code', 0, 7),
  ('CustomerList', 'Customer.PhoneNumber', 'Phone', 0, 8),
  ('CustomerList', 'TierDefs.TierName', 'Price tier', 0, 9),
  ('CustomerList', 'Customer.Active', 'Active (1 or 0)', 0, 10),
  ('CustomerList', 'Customer.ChargeAccount', 'Charge account (1 or 0)', 0, 11),
  ('CustomerList', 'Customer.TaxExempt', 'Tax exempt (1 or 0)', 0, 12),
  ('CustomerList', 'Customer.TotalSales', 'Total sales', 0, 13),
  ('CustomerList', 'Customer.Balance', 'Balance', 0, 14),
  ('CustomerList', 'Customer.AccountOpened', 'Account opened', 1, 15),
  ('CustomerList', 'Customer.LastPurchaseDate', 'Last purchase', 1, 16)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('CreditAging', 'Customer.LastName', 'Last name', 0, 1),
  ('CreditAging', 'Customer.FirstName', 'First name', 0, 2),
  ('CreditAging', 'Customer.Company', 'Company', 0, 3),
  ('CreditAging', 'Customer.AccountNumber', 'Account number', 0, 4),
  ('CreditAging', 'CreditTransaction.Time', 'Date', 1, 5),
  ('CreditAging', 'CreditTransaction.PastDueDate', 'Due date', 1, 6),
  ('CreditAging', 'CreditTransaction.CreditCode', 'Kind', 0, 7),
  ('CreditAging', 'CreditTransaction.Total', 'Amount', 0, 8),
  ('CreditAging', 'Customer.Balance', 'Balance', 0, 9)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('CreditbyCustomer', 'Customer.LastName', 'Last name', 0, 1),
  ('CreditbyCustomer', 'Customer.FirstName', 'First name', 0, 2),
  ('CreditbyCustomer', 'Customer.Company', 'Company', 0, 3),
  ('CreditbyCustomer', 'Customer.AccountNumber', 'Account number', 0, 4),
  ('CreditbyCustomer', 'CreditTransaction.Time', 'Date', 1, 5),
  ('CreditbyCustomer', 'CreditTransaction.PastDueDate', 'Due date', 1, 6),
  ('CreditbyCustomer', 'CreditTransaction.CreditCode', 'Kind', 0, 7),
  ('CreditbyCustomer', 'CreditTransaction.Total', 'Amount', 0, 8),
  ('CreditbyCustomer', 'Customer.Balance', 'Balance', 0, 9)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('CreditAdjustmentType', 'CreditTransaction.CreditCode', 'Kind', 0, 1),
  ('CreditAdjustmentType', 'CreditTransaction.Time', 'Date', 1, 2),
  ('CreditAdjustmentType', 'Customer.LastName', 'Last name', 0, 3),
  ('CreditAdjustmentType', 'Customer.Company', 'Company', 0, 4),
  ('CreditAdjustmentType', 'Customer.AccountNumber', 'Account number', 0, 5),
  ('CreditAdjustmentType', 'Cashier.Name', 'Cashier', 0, 6),
  ('CreditAdjustmentType', 'CreditTransaction.BatchNumber', 'Batch', 0, 7),
  ('CreditAdjustmentType', 'CreditTransaction.Total', 'Amount', 0, 8)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('layawaybycustomer', 'Customer.LastName', 'Last name', 0, 1),
  ('layawaybycustomer', 'Customer.FirstName', 'First name', 0, 2),
  ('layawaybycustomer', 'Customer.Company', 'Company', 0, 3),
  ('layawaybycustomer', 'Customer.AccountNumber', 'Account number', 0, 4),
  ('layawaybycustomer', 'Layaway.OpenDate', 'Opened', 1, 5),
  ('layawaybycustomer', 'Layaway.ExpirationDate', 'Expires', 1, 6),
  ('layawaybycustomer', 'Layaway.Status', 'Status (O, C or X)', 0, 7),
  ('layawaybycustomer', 'Layaway.Total', 'Amount', 0, 8)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('layawayexpiration', 'Layaway.ExpirationDate', 'Expires', 1, 1),
  ('layawayexpiration', 'Customer.LastName', 'Last name', 0, 2),
  ('layawayexpiration', 'Customer.FirstName', 'First name', 0, 3),
  ('layawayexpiration', 'Customer.Company', 'Company', 0, 4),
  ('layawayexpiration', 'Customer.AccountNumber', 'Account number', 0, 5),
  ('layawayexpiration', 'Layaway.OpenDate', 'Opened', 1, 6),
  ('layawayexpiration', 'Layaway.Total', 'Amount', 0, 7)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('GiftVouchers', 'GiftVoucher.VoucherNo', 'Voucher', 0, 1),
  ('GiftVouchers', 'GiftVoucher.IssueDate', 'Issued', 1, 2),
  ('GiftVouchers', 'GiftVoucher.ExpirationDate', 'Expires', 1, 3),
  ('GiftVouchers', 'GiftVoucher.Amount', 'Amount', 0, 4),
  ('GiftVouchers', 'GiftVoucher.Balance', 'Left', 0, 5),
  ('GiftVouchers', 'Customer.LastName', 'Last name', 0, 6)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('InventoryAdjustment', 'Item.Name', 'Item name', 0, 1),
  ('InventoryAdjustment', 'Item.MatrixSKU', 'SKU', 0, 2),
  ('InventoryAdjustment', 'Item.SKU', 'Parent SKU', 0, 3),
  ('InventoryAdjustment', 'Departments.Department', 'Department', 0, 4),
  ('InventoryAdjustment', 'InventoryLedger.PostDate', 'Date', 1, 5),
  ('InventoryAdjustment', 'InventoryLedger.Type', 'Reason', 0, 6),
  ('InventoryAdjustment', 'InventoryLedger.Qty', 'Quantity', 0, 7),
  ('InventoryAdjustment', 'InventoryLedger.Cost_ea', 'Cost', 0, 8)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('InventoryAdjustmentType', 'InventoryLedger.Type', 'Reason', 0, 1),
  ('InventoryAdjustmentType', 'Item.Name', 'Item name', 0, 2),
  ('InventoryAdjustmentType', 'Item.MatrixSKU', 'SKU', 0, 3),
  ('InventoryAdjustmentType', 'Item.SKU', 'Parent SKU', 0, 4),
  ('InventoryAdjustmentType', 'Departments.Department', 'Department', 0, 5),
  ('InventoryAdjustmentType', 'InventoryLedger.PostDate', 'Date', 1, 6),
  ('InventoryAdjustmentType', 'InventoryLedger.Qty', 'Quantity', 0, 7),
  ('InventoryAdjustmentType', 'InventoryLedger.Cost_ea', 'Cost', 0, 8)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('InventoryValuation', 'Departments.Department', 'Department', 0, 1),
  ('InventoryValuation', 'Item.Name', 'Item name', 0, 2),
  ('InventoryValuation', 'Item.MatrixSKU', 'SKU', 0, 3),
  ('InventoryValuation', 'Item.SKU', 'Parent SKU', 0, 4),
  ('InventoryValuation', 'InventoryLedger.PostDate', 'As at (use <=)', 1, 5),
  ('InventoryValuation', 'Item.StoreLocation', 'Location', 0, 6),
  ('InventoryValuation', 'Stock.Quantity', 'On hand now', 0, 7),
  ('InventoryValuation', 'Item.Active', 'Active (1 or 0)', 0, 8)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('ItemMatrixCP', 'ItemMatrixGroups.GroupName', 'Group', 0, 1),
  ('ItemMatrixCP', 'ItemMatrixCategories.CategoryName', 'Category', 0, 2),
  ('ItemMatrixCP', 'Item.SKU', 'Parent SKU', 0, 3),
  ('ItemMatrixCP', 'Item.MatrixSKU', 'SKU', 0, 4),
  ('ItemMatrixCP', 'Item.Name', 'Item name', 0, 5),
  ('ItemMatrixCP', 'Departments.Department', 'Department', 0, 6),
  ('ItemMatrixCP', 'Stock.Quantity', 'On hand', 0, 7),
  ('ItemMatrixCP', 'PriceMatrix.Price', 'Price', 0, 8),
  ('ItemMatrixCP', 'Item.Active', 'Active (1 or 0)', 0, 9)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('ItemMatrixGC', 'Item.SKU', 'Parent SKU', 0, 1),
  ('ItemMatrixGC', 'Item.MatrixSKU', 'SKU', 0, 2),
  ('ItemMatrixGC', 'Item.Name', 'Item name', 0, 3),
  ('ItemMatrixGC', 'Departments.Department', 'Department', 0, 4),
  ('ItemMatrixGC', 'Stock.Quantity', 'On hand', 0, 5),
  ('ItemMatrixGC', 'PriceMatrix.Price', 'Price', 0, 6),
  ('ItemMatrixGC', 'Item.Active', 'Active (1 or 0)', 0, 7)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('ItemDetailList', 'Item.Name', 'Item name', 0, 1),
  ('ItemDetailList', 'Item.MatrixSKU', 'SKU', 0, 2),
  ('ItemDetailList', 'Item.SKU', 'Parent SKU', 0, 3),
  ('ItemDetailList', 'Departments.Department', 'Department', 0, 4),
  ('ItemDetailList', 'Item.StoreLocation', 'Location', 0, 5),
  ('ItemDetailList', 'Stock.Quantity', 'On hand', 0, 6),
  ('ItemDetailList', 'PriceMatrix.Price', 'Price', 0, 7),
  ('ItemDetailList', 'Item.Active', 'Active (1 or 0)', 0, 8),
  ('ItemDetailList', 'ItemTypes.Description', 'Item type', 0, 9),
  ('ItemDetailList', 'TaxDef.Description', 'Tax class', 0, 10),
  ('ItemDetailList', 'Item.Restock', 'Reorder at', 0, 11),
  ('ItemDetailList', 'Item.DateLastSold', 'Last sold', 1, 12),
  ('ItemDetailList', 'Item.SerialFlag', 'Serial numbers (1 or 0)', 0, 13),
  ('ItemDetailList', 'Item.FoodStampFlag', 'Food stamps (1 or 0)', 0, 14),
  ('ItemDetailList', 'Item.BarcodeID', 'Barcode', 0, 15)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('ItemPriceList', 'Item.Name', 'Item name', 0, 1),
  ('ItemPriceList', 'Item.MatrixSKU', 'SKU', 0, 2),
  ('ItemPriceList', 'Item.SKU', 'Parent SKU', 0, 3),
  ('ItemPriceList', 'Departments.Department', 'Department', 0, 4),
  ('ItemPriceList', 'TierDefs.TierName', 'Price tier', 0, 5),
  ('ItemPriceList', 'PriceMatrix.Quantity', 'Quantity from', 0, 6),
  ('ItemPriceList', 'PriceMatrix.Price', 'Price', 0, 7),
  ('ItemPriceList', 'Item.Active', 'Active (1 or 0)', 0, 8)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('ItemsByDept', 'Departments.Department', 'Department', 0, 1),
  ('ItemsByDept', 'Item.Name', 'Item name', 0, 2),
  ('ItemsByDept', 'Item.MatrixSKU', 'SKU', 0, 3),
  ('ItemsByDept', 'Item.SKU', 'Parent SKU', 0, 4),
  ('ItemsByDept', 'Item.StoreLocation', 'Location', 0, 5),
  ('ItemsByDept', 'Stock.Quantity', 'On hand', 0, 6),
  ('ItemsByDept', 'PriceMatrix.Price', 'Price', 0, 7),
  ('ItemsByDept', 'Item.Active', 'Active (1 or 0)', 0, 8),
  ('ItemsByDept', 'Item.DateLastSold', 'Last sold', 1, 9)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('CommittedInventory', 'Item.Name', 'Item name', 0, 1),
  ('CommittedInventory', 'Item.MatrixSKU', 'SKU', 0, 2),
  ('CommittedInventory', 'Item.SKU', 'Parent SKU', 0, 3),
  ('CommittedInventory', 'Departments.Department', 'Department', 0, 4),
  ('CommittedInventory', 'Item.StoreLocation', 'Location', 0, 5),
  ('CommittedInventory', 'Stock.Quantity', 'On hand', 0, 6),
  ('CommittedInventory', 'PriceMatrix.Price', 'Price', 0, 7),
  ('CommittedInventory', 'Item.Active', 'Active (1 or 0)', 0, 8),
  ('CommittedInventory', 'Stock.QtyCommitt', 'Committed', 0, 9)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('ItemBelowReorder', 'Suppliers.Supplier', 'Supplier', 0, 1),
  ('ItemBelowReorder', 'Item.Name', 'Item name', 0, 2),
  ('ItemBelowReorder', 'Item.MatrixSKU', 'SKU', 0, 3),
  ('ItemBelowReorder', 'Item.SKU', 'Parent SKU', 0, 4),
  ('ItemBelowReorder', 'Departments.Department', 'Department', 0, 5),
  ('ItemBelowReorder', 'Item.StoreLocation', 'Location', 0, 6),
  ('ItemBelowReorder', 'Stock.Quantity', 'On hand', 0, 7),
  ('ItemBelowReorder', 'Item.Restock', 'Reorder at', 0, 8)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('ItemWithNoCost', 'Item.Name', 'Item name', 0, 1),
  ('ItemWithNoCost', 'Item.MatrixSKU', 'SKU', 0, 2),
  ('ItemWithNoCost', 'Item.SKU', 'Parent SKU', 0, 3),
  ('ItemWithNoCost', 'Departments.Department', 'Department', 0, 4),
  ('ItemWithNoCost', 'Item.StoreLocation', 'Location', 0, 5),
  ('ItemWithNoCost', 'Stock.Quantity', 'On hand', 0, 6),
  ('ItemWithNoCost', 'PriceMatrix.Price', 'Price', 0, 7),
  ('ItemWithNoCost', 'Item.Active', 'Active (1 or 0)', 0, 8)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('ItemNoSupp', 'Item.SKU', 'Parent SKU', 0, 1),
  ('ItemNoSupp', 'Item.MatrixSKU', 'SKU', 0, 2),
  ('ItemNoSupp', 'Item.Name', 'Item name', 0, 3),
  ('ItemNoSupp', 'Departments.Department', 'Department', 0, 4),
  ('ItemNoSupp', 'Item.StoreLocation', 'Location', 0, 5),
  ('ItemNoSupp', 'Stock.Quantity', 'On hand', 0, 6),
  ('ItemNoSupp', 'PriceMatrix.Price', 'Price', 0, 7),
  ('ItemNoSupp', 'Item.Active', 'Active (1 or 0)', 0, 8)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('SerialRecon', 'Item.Name', 'Item name', 0, 1),
  ('SerialRecon', 'Item.MatrixSKU', 'SKU', 0, 2),
  ('SerialRecon', 'Item.SKU', 'Parent SKU', 0, 3),
  ('SerialRecon', 'Departments.Department', 'Department', 0, 4),
  ('SerialRecon', 'Item.StoreLocation', 'Location', 0, 5),
  ('SerialRecon', 'Stock.Quantity', 'On hand', 0, 6),
  ('SerialRecon', 'Item.Active', 'Active (1 or 0)', 0, 7)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('SerialList', 'StockSerials.SerialNo', 'Serial number', 0, 1),
  ('SerialList', 'Item.Name', 'Item name', 0, 2),
  ('SerialList', 'Item.MatrixSKU', 'SKU', 0, 3),
  ('SerialList', 'Departments.Department', 'Department', 0, 4),
  ('SerialList', 'StockSerials.State', 'State', 0, 5),
  ('SerialList', 'StockSerials.Time', 'Date sold', 1, 6),
  ('SerialList', 'StockSerials.TransactionNumber', 'Transaction', 0, 7),
  ('SerialList', 'Customer.LastName', 'Last name', 0, 8)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('ItemSubs', 'Item.Name', 'Item name', 0, 1),
  ('ItemSubs', 'Item.MatrixSKU', 'SKU', 0, 2),
  ('ItemSubs', 'Item.SKU', 'Parent SKU', 0, 3),
  ('ItemSubs', 'Departments.Department', 'Department', 0, 4),
  ('ItemSubs', 'ItemSubstitutes.SubMatrixSKU', 'Substitute SKU', 0, 5),
  ('ItemSubs', 'ItemSubstitutes.Priority', 'Priority', 0, 6),
  ('ItemSubs', 'Stock.Quantity', 'On hand', 0, 7)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('PhysicalInvWk', 'Departments.Department', 'Department', 0, 1),
  ('PhysicalInvWk', 'Item.StoreLocation', 'Location', 0, 2),
  ('PhysicalInvWk', 'Item.Name', 'Item name', 0, 3),
  ('PhysicalInvWk', 'Item.MatrixSKU', 'SKU', 0, 4),
  ('PhysicalInvWk', 'Item.SKU', 'Parent SKU', 0, 5),
  ('PhysicalInvWk', 'Stock.Quantity', 'On hand', 0, 6),
  ('PhysicalInvWk', 'Item.Active', 'Active (1 or 0)', 0, 7)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('SupplierList', 'Suppliers.Supplier', 'Supplier', 0, 1),
  ('SupplierList', 'Suppliers.SupID', 'Number', 0, 2),
  ('SupplierList', 'Suppliers.City', 'City', 0, 3),
  ('SupplierList', 'Suppliers.State', 'State', 0, 4),
  ('SupplierList', 'Suppliers.Zip', 'Zip code', 0, 5),
  ('SupplierList', 'Suppliers.SalesRep', 'Representative', 0, 6),
  ('SupplierList', 'Suppliers.AccountNumber', 'Our account', 0, 7)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('PurchaseOrderStatus', 'PurchaseOrders.PONumber', 'PO number', 0, 1),
  ('PurchaseOrderStatus', 'Suppliers.Supplier', 'Supplier', 0, 2),
  ('PurchaseOrderStatus', 'PurchaseOrders.PODate', 'Date', 1, 3),
  ('PurchaseOrderStatus', 'PurchaseOrders.Status', 'Status (O, P or C)', 0, 4),
  ('PurchaseOrderStatus', 'PurchaseOrders.Amount', 'Amount', 0, 5),
  ('PurchaseOrderStatus', 'PurchaseOrders.OpenAmount', 'Still open', 0, 6)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('PurchasesByDept', 'Departments.Department', 'Department', 0, 1),
  ('PurchasesByDept', 'Item.Name', 'Item name', 0, 2),
  ('PurchasesByDept', 'Item.MatrixSKU', 'SKU', 0, 3),
  ('PurchasesByDept', 'Item.SKU', 'Parent SKU', 0, 4),
  ('PurchasesByDept', 'Suppliers.Supplier', 'Supplier', 0, 5),
  ('PurchasesByDept', 'PurchaseOrderReceipt.PostDate', 'Date received', 1, 6),
  ('PurchasesByDept', 'PurchaseOrders.PODate', 'Date ordered', 1, 7),
  ('PurchasesByDept', 'PurchaseOrders.PONumber', 'PO number', 0, 8),
  ('PurchasesByDept', 'PurchaseOrderItems.POID', 'POID', 0, 9),
  ('PurchasesByDept', 'PurchaseOrderReceipt.Quantity', 'Quantity', 0, 10)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('PurchasesByItem', 'Item.Name', 'Item name', 0, 1),
  ('PurchasesByItem', 'Item.MatrixSKU', 'SKU', 0, 2),
  ('PurchasesByItem', 'Item.SKU', 'Parent SKU', 0, 3),
  ('PurchasesByItem', 'Departments.Department', 'Department', 0, 4),
  ('PurchasesByItem', 'Suppliers.Supplier', 'Supplier', 0, 5),
  ('PurchasesByItem', 'PurchaseOrderReceipt.PostDate', 'Date received', 1, 6),
  ('PurchasesByItem', 'PurchaseOrders.PODate', 'Date ordered', 1, 7),
  ('PurchasesByItem', 'PurchaseOrders.PONumber', 'PO number', 0, 8),
  ('PurchasesByItem', 'PurchaseOrderItems.POID', 'POID', 0, 9),
  ('PurchasesByItem', 'PurchaseOrderReceipt.Quantity', 'Quantity', 0, 10)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('PurchasesBySupplier', 'Suppliers.Supplier', 'Supplier', 0, 1),
  ('PurchasesBySupplier', 'PurchaseOrders.PONumber', 'PO number', 0, 2),
  ('PurchasesBySupplier', 'PurchaseOrderReceipt.PostDate', 'Date received', 1, 3),
  ('PurchasesBySupplier', 'PurchaseOrders.PODate', 'Date ordered', 1, 4),
  ('PurchasesBySupplier', 'PurchaseOrderItems.POID', 'POID', 0, 5),
  ('PurchasesBySupplier', 'PurchaseOrderReceipt.Quantity', 'Quantity', 0, 6),
  ('PurchasesBySupplier', 'Item.Name', 'Item name', 0, 7),
  ('PurchasesBySupplier', 'Item.MatrixSKU', 'SKU', 0, 8),
  ('PurchasesBySupplier', 'Departments.Department', 'Department', 0, 9)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('ItemLabels', 'Item.MatrixSKU', 'SKU', 0, 1),
  ('ItemLabels', 'Item.Name', 'Item name', 0, 2),
  ('ItemLabels', 'Item.SKU', 'Parent SKU', 0, 3),
  ('ItemLabels', 'Departments.Department', 'Department', 0, 4),
  ('ItemLabels', 'Item.StoreLocation', 'Location', 0, 5),
  ('ItemLabels', 'Stock.Quantity', 'On hand', 0, 6),
  ('ItemLabels', 'PriceMatrix.Price', 'Price', 0, 7),
  ('ItemLabels', 'Item.DateLastSold', 'Last sold', 1, 8),
  ('ItemLabels', 'Item.Active', 'Active (1 or 0)', 0, 9)
INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES
  ('CustLabels', 'Customer.LastName', 'Last name', 0, 1),
  ('CustLabels', 'Customer.FirstName', 'First name', 0, 2),
  ('CustLabels', 'Customer.Company', 'Company', 0, 3),
  ('CustLabels', 'Customer.City', 'City', 0, 4),
  ('CustLabels', 'Customer.State', 'State', 0, 5),
  ('CustLabels', 'Customer.Zip', 'Zip code', 0, 6),
  ('CustLabels', 'TierDefs.TierName', 'Price tier', 0, 7),
  ('CustLabels', 'Customer.Active', 'Active (1 or 0)', 0, 8),
  ('CustLabels', 'Customer.TotalSales', 'Total sales', 0, 9),
  ('CustLabels', 'Customer.LastPurchaseDate', 'Last purchase', 1, 10)
