#pragma once

namespace merchantry::db {

// What brings a store of version 8 to version 9. A batch that runs over a store which has a change already leaves that alone.
constexpr const char* kToVersion9 = R"sql(
-- Keys and numbers of orders were 16-bit numbers. A column that keys and indexes hold changes its type without them.
IF COL_LENGTH('PurchaseOrder', 'POID') = 2
BEGIN
  ALTER TABLE PurchaseOrderItem DROP CONSTRAINT FK_PurchaseOrderItem_Order, PK_PurchaseOrderItem
  ALTER TABLE PurchaseOrderReceipt DROP CONSTRAINT FK_PurchaseOrderReceipt_Order
  ALTER TABLE PurchaseOrderCancel DROP CONSTRAINT FK_PurchaseOrderCancel_Order
  ALTER TABLE PurchaseOrderCost DROP CONSTRAINT FK_PurchaseOrderCost_Order
  ALTER TABLE PurchaseOrder DROP CONSTRAINT PK_PurchaseOrder
  DROP INDEX PurchaseOrder.IX_PurchaseOrder_Number
  DROP INDEX PurchaseOrderReceipt.IX_PurchaseOrderReceipt_Order
  DROP INDEX PurchaseOrderCancel.IX_PurchaseOrderCancel_Order
  DROP INDEX PurchaseOrderCost.IX_PurchaseOrderCost_Order
  ALTER TABLE PurchaseOrder ALTER COLUMN POID int NOT NULL
  ALTER TABLE PurchaseOrder ALTER COLUMN PONumber int NULL
  ALTER TABLE PurchaseOrderItem ALTER COLUMN POID int NOT NULL
  ALTER TABLE PurchaseOrderReceipt ALTER COLUMN POID int NOT NULL
  ALTER TABLE PurchaseOrderCancel ALTER COLUMN POID int NOT NULL
  ALTER TABLE PurchaseOrderCost ALTER COLUMN POID int NOT NULL
  ALTER TABLE PurchaseOrder ADD CONSTRAINT PK_PurchaseOrder PRIMARY KEY (POID)
  ALTER TABLE PurchaseOrderItem ADD CONSTRAINT PK_PurchaseOrderItem PRIMARY KEY (POID, SKU, MatrixSKU),
    CONSTRAINT FK_PurchaseOrderItem_Order FOREIGN KEY (POID) REFERENCES PurchaseOrder (POID) ON DELETE CASCADE
  ALTER TABLE PurchaseOrderReceipt ADD CONSTRAINT FK_PurchaseOrderReceipt_Order FOREIGN KEY (POID) REFERENCES PurchaseOrder (POID) ON DELETE CASCADE
  ALTER TABLE PurchaseOrderCancel ADD CONSTRAINT FK_PurchaseOrderCancel_Order FOREIGN KEY (POID) REFERENCES PurchaseOrder (POID) ON DELETE CASCADE
  ALTER TABLE PurchaseOrderCost ADD CONSTRAINT FK_PurchaseOrderCost_Order FOREIGN KEY (POID) REFERENCES PurchaseOrder (POID) ON DELETE CASCADE
  CREATE INDEX IX_PurchaseOrder_Number ON PurchaseOrder (PONumber)
  CREATE INDEX IX_PurchaseOrderReceipt_Order ON PurchaseOrderReceipt (POID)
  CREATE INDEX IX_PurchaseOrderCancel_Order ON PurchaseOrderCancel (POID)
  CREATE INDEX IX_PurchaseOrderCost_Order ON PurchaseOrderCost (POID)
END
-- What a movement is, apart from its text; and the tax rate at the time of a sale.
IF COL_LENGTH('InventoryLedger', 'Kind') IS NULL
  ALTER TABLE InventoryLedger ADD Kind varchar(20) NOT NULL CONSTRAINT DF_InventoryLedger_Kind DEFAULT ''
EXEC ('UPDATE InventoryLedger SET Kind = CASE WHEN Type IN (''Sale'', ''Return'', ''Receipt'', ''Cancel'') THEN Type WHEN Type = ''Opening Stock'' THEN ''Opening'' ELSE ''Adjustment'' END WHERE Kind = ''''')
IF COL_LENGTH('TransactionTax', 'Rate') IS NULL
  ALTER TABLE TransactionTax ADD Rate float NULL
UPDATE reportfieldsmapping SET fieldname = 'ISNULL(TransactionTax.Rate, TaxDef.Amt)' WHERE reportname = 'DailyTaxes' AND fieldname = 'TaxDef.Amt'
-- Units that had gone out and came back by an undoing were averaged at what was paid for the others since. From the first such row of an item on, the averages are
-- worked out again as the trigger InventoryLedger_Insert does.
DECLARE @id int, @sku varchar(100), @matrix varchar(100), @qty int, @cost money, @onHand int, @average money, @reverses int, @rest decimal(19, 4)
SELECT @id = MIN(LedgerID) FROM InventoryLedger WHERE ReversesID IS NOT NULL AND Qty > 0
WHILE @id IS NOT NULL
BEGIN
  SELECT @sku = SKU, @matrix = MatrixSKU, @qty = Qty, @cost = Cost_ea, @reverses = ReversesID, @onHand = 0, @average = NULL FROM InventoryLedger WHERE LedgerID = @id
  SELECT TOP 1 @onHand = QtyAfter, @average = Cost_wt FROM InventoryLedger
    WHERE SKU = @sku AND MatrixSKU = @matrix AND LedgerID < @id AND QtyAfter IS NOT NULL
    ORDER BY LedgerID DESC
  IF @reverses IS NOT NULL AND @qty > 0
    SELECT @cost = Cost_wt FROM InventoryLedger WHERE LedgerID = @reverses AND Cost_wt IS NOT NULL
  IF @reverses IS NOT NULL AND @qty <= 0 AND @average IS NOT NULL
  BEGIN
    IF @onHand + @qty > 0
    BEGIN
      SET @rest = ROUND((CAST(@onHand AS decimal(10, 0)) * CAST(@average AS decimal(19, 4)) + @qty * CAST(@cost AS decimal(19, 4))) / (@onHand + @qty), 4)
      IF @rest >= 0
        SET @average = @rest
    END
  END
  ELSE IF @qty > 0 AND (@onHand <= 0 OR @average IS NULL)
    SET @average = @cost
  ELSE IF @qty > 0
    SET @average = ROUND((CAST(@onHand AS decimal(10, 0)) * CAST(@average AS decimal(19, 4)) + @qty * CAST(@cost AS decimal(19, 4))) / (@onHand + @qty), 4)
  ELSE IF @average IS NULL
    SET @average = @cost
  UPDATE InventoryLedger SET Cost_wt = @average WHERE LedgerID = @id
  SELECT @id = MIN(l.LedgerID) FROM InventoryLedger l
    WHERE l.LedgerID > @id
      AND EXISTS (SELECT * FROM InventoryLedger r WHERE r.SKU = l.SKU AND r.MatrixSKU = l.MatrixSKU AND r.ReversesID IS NOT NULL AND r.Qty > 0 AND r.LedgerID <= l.LedgerID)
END
-- Orders of which nothing is open stayed open when an editor had left nothing, and items kept others that were deleted.
UPDATE PurchaseOrder SET Status = 'C' WHERE Status <> 'C' AND PONumber IS NOT NULL AND EXISTS (SELECT * FROM PurchaseOrderItem i WHERE i.POID = PurchaseOrder.POID)
  AND NOT EXISTS (SELECT * FROM PurchaseOrderItem i WHERE i.POID = PurchaseOrder.POID AND i.Qty > i.QtyRecvd + i.QtyCanceled)
UPDATE Item SET TagAlongSKU = NULL, TagAlongMatrixSKU = NULL
  WHERE TagAlongSKU IS NOT NULL AND NOT EXISTS (SELECT * FROM Item t WHERE t.SKU = Item.TagAlongSKU AND t.MatrixSKU = Item.TagAlongMatrixSKU)
DELETE FROM ItemSubstitutes WHERE NOT EXISTS (SELECT * FROM Item t WHERE t.SKU = ItemSubstitutes.SubSKU AND t.MatrixSKU = ItemSubstitutes.SubMatrixSKU)
DELETE FROM ItemSplitMatrix WHERE NOT EXISTS (SELECT * FROM Item t WHERE t.SKU = ItemSplitMatrix.SplitParentSKU AND t.MatrixSKU = ItemSplitMatrix.SplitParentMatrixSKU)
)sql";

} // namespace merchantry::db
