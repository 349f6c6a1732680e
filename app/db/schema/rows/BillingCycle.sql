-- The days of the month that accounts can be billed on, where a shop has not told its own.
IF NOT EXISTS (SELECT * FROM BillingCycle) INSERT INTO BillingCycle (Cycle) VALUES (1), (5), (10), (15), (20), (25)
