-- How a tender is offered: under which name, whether at all, and in which place, counted from 0.
CREATE PROCEDURE sp_UpdateTenderType @StoreID int, @TenderType varchar(50), @DisplayName varchar(50), @Available bit, @DisplayOrder smallint AS
UPDATE TenderTypes SET DisplayName = @DisplayName, Available = @Available, DisplayOrder = @DisplayOrder
WHERE StoreID = @StoreID AND TenderType = @TenderType
