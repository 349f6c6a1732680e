-- The supplier of an order, or of the key when the order's number is -1.
CREATE PROCEDURE sp_GetSupplierInfo @PONumber int, @SupID smallint AS
SELECT Supplier, SupID, Address1, Address2, Address3, City, State, Zip, SalesRep, Phone, Fax, Email, Website, AccountNumber FROM Suppliers
WHERE SupID = CASE WHEN @PONumber = -1 THEN @SupID ELSE (SELECT SupID FROM PurchaseOrder WHERE PONumber = @PONumber) END
