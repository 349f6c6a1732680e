-- The printer on which a register prints its receipts; null for the machine's own default.
CREATE PROCEDURE sp_GetReceiptPrinter @RegisterID smallint AS
SELECT ReceiptPrinter FROM Register WHERE ID = @RegisterID
