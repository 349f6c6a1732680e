-- A new sale event of an item; both days belong to it.
CREATE PROCEDURE sp_InsertSale @SKU varchar(100), @MatrixSKU varchar(100), @DateFrom datetime, @DateTo datetime, @SalePrice money AS
INSERT INTO Sales (SKU, MatrixSKU, DateFrom, DateTo, SalePrice) VALUES (@SKU, @MatrixSKU, @DateFrom, @DateTo, @SalePrice)
