-- Prices: per item, tier and quantity from which the price applies. The retail price is tier 1 at quantity 1 (or 0).
CREATE TABLE PriceMatrix (
  SKU varchar(100) NOT NULL,
  MatrixSKU varchar(100) NOT NULL,
  Tier int NOT NULL CONSTRAINT DF_PriceMatrix_Tier DEFAULT 1 CONSTRAINT FK_PriceMatrix_TierDefs REFERENCES TierDefs (TierID) ON DELETE CASCADE,
  Quantity float NOT NULL CONSTRAINT DF_PriceMatrix_Quantity DEFAULT 1,
  Price money NOT NULL CONSTRAINT DF_PriceMatrix_Price DEFAULT 0,
  CONSTRAINT PK_PriceMatrix PRIMARY KEY (SKU, MatrixSKU, Tier, Quantity),
  CONSTRAINT FK_PriceMatrix_Item FOREIGN KEY (SKU, MatrixSKU) REFERENCES Item (SKU, MatrixSKU) ON DELETE CASCADE
)
CREATE INDEX IX_PriceMatrix_Tier ON PriceMatrix (Tier)
