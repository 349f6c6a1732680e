-- Which report file prints item labels, by the size and kind of printer and by the rule of how many: "Stock", "Specific Quantity", "PO #",
-- or "Receipt" for what a delivery just brought. The first position of a printer or a rule is its place in a list.
CREATE TABLE LabelReports (
  Printer varchar(100) NOT NULL,
  Quantity varchar(50) NOT NULL,
  Report varchar(255) NOT NULL,
  position smallint NOT NULL CONSTRAINT DF_LabelReports_Position DEFAULT 0,
  CONSTRAINT PK_LabelReports PRIMARY KEY (Printer, Quantity)
)
