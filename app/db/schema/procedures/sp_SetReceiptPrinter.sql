-- Gives a register its receipt printer; null is the machine's own default.
CREATE PROCEDURE sp_SetReceiptPrinter @RegisterID smallint, @Printer varchar(255) AS
UPDATE Register SET ReceiptPrinter = @Printer WHERE ID = @RegisterID
