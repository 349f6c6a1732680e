-- What a file made of other records: departments and suppliers that came with items, suppliers, customers. A record that it made has a row without a field; each field that came has one
-- with what stood there and what it became. A row outlives its record.
CREATE TABLE ImportField (
  ImportID int NOT NULL CONSTRAINT FK_ImportField_Run REFERENCES ImportRun (ImportID) ON DELETE CASCADE,
  Kind varchar(20) NOT NULL,
  RecordID int NOT NULL,
  Field varchar(50) NOT NULL CONSTRAINT DF_ImportField_Field DEFAULT '',
  OldValue varchar(8000) NULL,
  NewValue varchar(8000) NULL,
  CONSTRAINT PK_ImportField PRIMARY KEY (ImportID, Kind, RecordID, Field)
)
