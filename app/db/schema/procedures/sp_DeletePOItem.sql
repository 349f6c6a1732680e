-- Takes a line off an order. One of which something was received or cancelled meanwhile stays, with what is open of it: its receipts are told by the order, and the rest is
-- given up by cancelling.
CREATE PROCEDURE sp_DeletePOItem @POID int, @SKU varchar(100), @MatrixSKU varchar(100) AS
DELETE FROM PurchaseOrderItem WHERE POID = @POID AND SKU = @SKU AND MatrixSKU = @MatrixSKU AND QtyRecvd = 0 AND QtyCanceled = 0
