-- The reasons for adjustments, for a grid that changes them.
CREATE PROCEDURE bsp_ReasonCodes AS
SELECT ReasonID, ReasonCode FROM InvReasonCodes ORDER BY ReasonID
