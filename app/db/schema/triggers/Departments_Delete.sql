-- A department in which something was sold stays: the reports of those days name it. (One that has items is kept by their reference to it.)
CREATE TRIGGER Departments_Delete ON Departments AFTER DELETE AS
BEGIN
  SET NOCOUNT ON
  DECLARE @department varchar(50)
  SELECT @department = MIN(d.Department) FROM deleted d WHERE EXISTS (SELECT * FROM TransactionEntry e WHERE e.DepartmentID = d.DepartmentID)
  IF @department IS NULL
    RETURN
  RAISERROR('The department "%s" cannot be deleted: things were sold in it, and the reports of those days name it. Give it another name instead.', 16, 1, @department)
  ROLLBACK TRANSACTION
END
