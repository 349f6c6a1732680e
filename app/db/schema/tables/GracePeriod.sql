-- Grace periods in days that the options offer.
CREATE TABLE GracePeriod (
  Period smallint NOT NULL CONSTRAINT PK_GracePeriod PRIMARY KEY CONSTRAINT CK_GracePeriod CHECK (Period >= 0)
)
