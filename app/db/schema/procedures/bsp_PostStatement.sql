-- Keeps a customer's statement and posts its finance charge, dated at the end of the statement's day, open in full and due on that day.
CREATE PROCEDURE bsp_PostStatement @RunID int, @CustomerID int, @Since datetime, @BroughtForward money, @Charged money, @Paid money, @Credited money, @FinanceCharge money,
  @Balance money, @NotDue money, @Days30 money, @Days60 money, @Days90 money, @Over90 money, @Unapplied money, @Reckoning varchar(8000) AS
SET NOCOUNT ON
DECLARE @id int
IF @FinanceCharge > 0
BEGIN
  INSERT INTO CreditTransaction (BatchNumber, StoreID, CustomerID, CashierID, CreditID, CreditCode, Time, PastDueDate, Total, OutstandingBalance)
    SELECT BatchNumber, StoreID, @CustomerID, CashierID, 1, 'Finance Charge', DATEADD(second, 86399, AsAt), AsAt, @FinanceCharge, @FinanceCharge FROM StatementRun WHERE RunID = @RunID
  SET @id = SCOPE_IDENTITY()
  UPDATE CreditTransaction SET TransactionNumber = -CreditTransID WHERE CreditTransID = @id
  UPDATE Customer SET Balance = Balance + @FinanceCharge WHERE ID = @CustomerID
END
INSERT INTO Statement (RunID, CustomerID, Since, BroughtForward, Charged, Paid, Credited, FinanceCharge, Balance, NotDue, Days30, Days60, Days90, Over90, Unapplied, Reckoning, CreditTransID)
  VALUES (@RunID, @CustomerID, @Since, @BroughtForward, @Charged, @Paid, @Credited, @FinanceCharge, @Balance, @NotDue, @Days30, @Days60, @Days90, @Over90, @Unapplied, @Reckoning, @id)
