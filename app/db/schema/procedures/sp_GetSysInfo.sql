-- What the about screen tells of the store.
CREATE PROCEDURE sp_GetSysInfo AS
SELECT @@VERSION AS SvrInfo, CAST(MAX(Version) AS varchar(20)) AS Version, MAX(UpgradeDate) AS Date FROM SchemaVersion
