-- Days of the month on which a billing cycle may start.
CREATE TABLE BillingCycle (
  Cycle smallint NOT NULL CONSTRAINT PK_BillingCycle PRIMARY KEY CONSTRAINT CK_BillingCycle CHECK (Cycle BETWEEN 1 AND 31)
)
