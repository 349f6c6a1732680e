-- Days of grace that accounts can have, where a shop has not told its own.
IF NOT EXISTS (SELECT * FROM GracePeriod) INSERT INTO GracePeriod (Period) VALUES (0), (5), (10), (15), (20), (30), (45), (60), (90)
