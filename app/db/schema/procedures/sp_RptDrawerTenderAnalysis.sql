-- Every drawer of every day: the float, the cash taken, what was dropped or paid out, what should lie in it, and what was counted at closing (null while open).
-- OverShort is negative when cash is missing.
CREATE PROCEDURE sp_RptDrawerTenderAnalysis AS
SELECT drawers.RegisterID, drawers.Day, SUM(drawers.Opening) AS Opening, SUM(drawers.Cash) AS Cash, SUM(drawers.Moved) AS Moved,
  SUM(drawers.Opening + drawers.Cash + drawers.Moved) AS Expected, SUM(drawers.Counted) AS Counted,
  SUM(drawers.Counted) - SUM(drawers.Opening + drawers.Cash + drawers.Moved) AS OverShort
FROM (SELECT t.RegisterID, DATEADD(day, DATEDIFF(day, 0, t.Time), 0) AS Day, CAST(0 AS money) AS Opening, x.Amount AS Cash, CAST(0 AS money) AS Moved, CAST(NULL AS money) AS Counted
    FROM TransactionTender x INNER JOIN [Transaction] t ON t.TransactionNumber = x.TransactionNumber WHERE x.TenderType = 'Cash'
    UNION ALL
    SELECT d.RegisterID, DATEADD(day, DATEDIFF(day, 0, d.Time), 0), CASE WHEN d.EventType = 'Opening' THEN d.Amount ELSE 0 END, 0,
      CASE WHEN d.EventType IN ('Opening', 'Closing') THEN 0 ELSE d.Amount END, CASE WHEN d.EventType = 'Closing' THEN d.Amount END
    FROM DrawerEvent d) AS drawers
GROUP BY drawers.RegisterID, drawers.Day
ORDER BY drawers.Day, drawers.RegisterID
