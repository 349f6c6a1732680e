-- Vouchers sold and what is left of them.
CREATE TABLE GiftVoucher (
  VoucherNo varchar(50) NOT NULL CONSTRAINT PK_GiftVoucher PRIMARY KEY,
  IssueDate datetime NOT NULL CONSTRAINT DF_GiftVoucher_Issue DEFAULT GETDATE(),
  ExpirationDate datetime NULL,
  Amount money NOT NULL CONSTRAINT DF_GiftVoucher_Amount DEFAULT 0,
  Balance money NOT NULL CONSTRAINT DF_GiftVoucher_Balance DEFAULT 0,
  CustomerID int NULL CONSTRAINT FK_GiftVoucher_Customer REFERENCES Customer (ID),
  TransactionNumber int NULL
)
CREATE INDEX IX_GiftVoucher_Customer ON GiftVoucher (CustomerID)
