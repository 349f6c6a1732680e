-- Opens a batch, which covers what one cashier posts to accounts in one go.
CREATE PROCEDURE sp_AddBatch @StoreId int, @CashierId int AS
SET NOCOUNT ON
INSERT INTO batch (StoreID, CashierID) VALUES (@StoreId, @CashierId)
