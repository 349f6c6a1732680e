-- The tenders of a store in the order in which its registers offer them; those that are not available are offered to nobody. TenderCount is the number of rows.
CREATE PROCEDURE sp_GetTenderTypes @StoreID int AS
SELECT (SELECT COUNT(*) FROM TenderTypes c WHERE c.StoreID = @StoreID) AS TenderCount, TenderType, Available, DisplayName
FROM TenderTypes
WHERE StoreID = @StoreID
ORDER BY DisplayOrder, TenderType
