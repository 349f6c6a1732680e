-- Suppliers chosen for an order run.
CREATE TABLE wrkPOSuppliers (
  SupID smallint NOT NULL CONSTRAINT PK_wrkPOSuppliers PRIMARY KEY
)
