-- How far the first steps of a new shop have come; one row.
IF NOT EXISTS (SELECT * FROM FirstRoad) INSERT INTO FirstRoad DEFAULT VALUES
