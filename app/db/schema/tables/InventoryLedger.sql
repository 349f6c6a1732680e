-- Every movement of stock, signed; nothing is ever deleted from it but with its item. Cost_ea is the cost of a piece of this movement. The database fills PostDate,
-- Cost_wt (the weighted average cost of a piece after the movement) and QtyAfter (the balance after it); see the trigger InventoryLedger_Insert.
-- Kind is what a row is, whatever its Type is called: 'Sale' and 'Return' of a register, 'Receipt' of an order, 'Cancel', 'Opening' of the store, or 'Adjustment', whose Type is the reason code at the time. A writer that
-- leaves it empty gets it from the trigger, by the Type.
-- ReversesID names the adjustment that this row takes back, with the opposite quantity and the same cost; see bsp_UndoAdjustment. The row taken back stays.
CREATE TABLE InventoryLedger (
  LedgerID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_InventoryLedger PRIMARY KEY,
  SKU varchar(100) NOT NULL,
  MatrixSKU varchar(100) NOT NULL,
  Type varchar(50) NOT NULL CONSTRAINT DF_InventoryLedger_Type DEFAULT '',
  Qty int NOT NULL CONSTRAINT DF_InventoryLedger_Qty DEFAULT 0,
  Cost_ea money NOT NULL CONSTRAINT DF_InventoryLedger_Cost DEFAULT 0,
  Cost_wt money NULL,
  QtyAfter int NULL,
  PostDate datetime NOT NULL CONSTRAINT DF_InventoryLedger_PostDate DEFAULT GETDATE(),
  ReversesID int NULL,
  Kind varchar(20) NOT NULL CONSTRAINT DF_InventoryLedger_Kind DEFAULT '',
  CONSTRAINT FK_InventoryLedger_Item FOREIGN KEY (SKU, MatrixSKU) REFERENCES Item (SKU, MatrixSKU) ON DELETE CASCADE
)
CREATE INDEX IX_InventoryLedger_Item ON InventoryLedger (SKU, MatrixSKU, PostDate)
CREATE INDEX IX_InventoryLedger_Posting ON InventoryLedger (SKU, MatrixSKU, LedgerID)
CREATE INDEX IX_InventoryLedger_Type ON InventoryLedger (Type)
