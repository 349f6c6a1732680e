-- Fields that the store added to its customers.
CREATE TABLE CustomFields (
  CustFieldName varchar(50) NOT NULL CONSTRAINT PK_CustomFields PRIMARY KEY,
  CustFieldType varchar(20) NOT NULL CONSTRAINT DF_CustomFields_Type DEFAULT 'Text'
)
