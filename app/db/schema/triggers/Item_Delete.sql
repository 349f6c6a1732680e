-- A deleted item goes from the other items, too: as their tag-along, their substitute and their split parent.
CREATE TRIGGER Item_Delete ON Item AFTER DELETE AS
BEGIN
  SET NOCOUNT ON
  UPDATE Item SET TagAlongSKU = NULL, TagAlongMatrixSKU = NULL
    WHERE TagAlongSKU IS NOT NULL AND EXISTS (SELECT * FROM deleted d WHERE d.SKU = Item.TagAlongSKU AND d.MatrixSKU = Item.TagAlongMatrixSKU)
  DELETE FROM ItemSubstitutes WHERE EXISTS (SELECT * FROM deleted d WHERE d.SKU = ItemSubstitutes.SubSKU AND d.MatrixSKU = ItemSubstitutes.SubMatrixSKU)
  DELETE FROM ItemSplitMatrix WHERE EXISTS (SELECT * FROM deleted d WHERE d.SKU = ItemSplitMatrix.SplitParentSKU AND d.MatrixSKU = ItemSplitMatrix.SplitParentMatrixSKU)
END
