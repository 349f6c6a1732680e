-- The prices that such a change wrote, with what they were before. A row outlives its item, which may go at any time.
CREATE TABLE PriceChangeItem (
  PriceChangeID int NOT NULL CONSTRAINT FK_PriceChangeItem_Change REFERENCES PriceChange (PriceChangeID) ON DELETE CASCADE,
  SKU varchar(100) NOT NULL,
  MatrixSKU varchar(100) NOT NULL,
  Tier int NOT NULL,
  Quantity float NOT NULL,
  OldPrice money NOT NULL,
  NewPrice money NOT NULL,
  CONSTRAINT PK_PriceChangeItem PRIMARY KEY (PriceChangeID, SKU, MatrixSKU, Tier, Quantity)
)
