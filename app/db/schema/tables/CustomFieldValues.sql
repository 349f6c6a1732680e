-- What a customer has in a field; goes with the customer and with the field.
CREATE TABLE CustomFieldValues (
  CustID int NOT NULL CONSTRAINT FK_CustomFieldValues_Customer REFERENCES Customer (ID) ON DELETE CASCADE,
  CustFieldName varchar(50) NOT NULL CONSTRAINT FK_CustomFieldValues_Fields REFERENCES CustomFields (CustFieldName) ON DELETE CASCADE,
  FieldValue varchar(255) NULL,
  CONSTRAINT PK_CustomFieldValues PRIMARY KEY (CustID, CustFieldName)
)
CREATE INDEX IX_CustomFieldValues_Field ON CustomFieldValues (CustFieldName)
