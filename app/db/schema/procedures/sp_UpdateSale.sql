-- Other days or another price for a sale event.
CREATE PROCEDURE sp_UpdateSale @ID int, @DateFrom datetime, @DateTo datetime, @SalePrice money AS
UPDATE Sales SET DateFrom = @DateFrom, DateTo = @DateTo, SalePrice = @SalePrice WHERE ID = @ID
