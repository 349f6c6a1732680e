-- Why stock was adjusted. Row 1 is the base code; ledger rows of a deleted code go there.
CREATE TABLE InvReasonCodes (
  ReasonID int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_InvReasonCodes PRIMARY KEY,
  ReasonCode varchar(50) NOT NULL CONSTRAINT DF_InvReasonCodes_Code DEFAULT 'ReasonCode'
)
