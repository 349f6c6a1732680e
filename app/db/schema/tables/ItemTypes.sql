-- What kind an item is. 2 matrix item, 3 split item, 4 matrix parent, 5 tracked by serial number; 6 is what a new item gets.
CREATE TABLE ItemTypes (
  TypeId smallint NOT NULL CONSTRAINT PK_ItemTypes PRIMARY KEY,
  Description varchar(50) NOT NULL
)
