-- The steps are offered no more, on no machine of the store.
CREATE PROCEDURE bsp_PutFirstRoadAway AS
UPDATE FirstRoad SET PutAway = GETDATE()
