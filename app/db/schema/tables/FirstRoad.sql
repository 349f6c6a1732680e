-- Whether the main window still offers the steps from an empty store to the first sale. One row; a time in PutAway means that somebody wants them no more.
CREATE TABLE FirstRoad (
  ID int NOT NULL CONSTRAINT DF_FirstRoad_ID DEFAULT 1 CONSTRAINT PK_FirstRoad PRIMARY KEY CONSTRAINT CK_FirstRoad_One CHECK (ID = 1),
  PutAway datetime NULL
)
