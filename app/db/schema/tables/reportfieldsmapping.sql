-- The names under which a report's columns are offered as criteria, in the order of position. A column may be an expression over the tables of the report's query.
CREATE TABLE reportfieldsmapping (
  reportname varchar(100) NOT NULL,
  fieldname varchar(255) NOT NULL,
  fielddescription varchar(100) NOT NULL CONSTRAINT DF_reportfieldsmapping_Description DEFAULT '',
  dateconvert bit NOT NULL CONSTRAINT DF_reportfieldsmapping_Date DEFAULT 0,
  position smallint NOT NULL CONSTRAINT DF_reportfieldsmapping_Position DEFAULT 0,
  CONSTRAINT PK_reportfieldsmapping PRIMARY KEY (reportname, fieldname)
)
