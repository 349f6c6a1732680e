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
)sql";

} // namespace merchantry::db
