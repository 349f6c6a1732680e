-- Which fields the columns of a file went to, by the set of its headings: the next file of the same maker finds them so.
CREATE TABLE ImportHeadings (
  Target varchar(20) NOT NULL,
  Headings varchar(64) NOT NULL,
  Fields varchar(4000) NOT NULL,
  CONSTRAINT PK_ImportHeadings PRIMARY KEY (Target, Headings)
)
