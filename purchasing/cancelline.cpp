#include "purchasing/cancelline.h"

#include "app/db/ado/transaction.h"
#include "app/modMain.h"

namespace merchantry::purchasing {

std::int32_t postCancellation(std::int32_t PONumber, const std::vector<CancelLine>& lines) {
    db::Transaction transaction(app::modMain().Conn);
    const std::int32_t CancelNumber =
        postLines(PONumber, lines, &CancelLine::CancelQty, "CancelNumber", [&](const CancelLine& line, std::int32_t number) {
            return db::Sql("sp_CancelItem 1, ") + PONumber + ", '" + line.SKU + "', '" + line.MatrixSKU + "', " + int{line.CancelQty} +
                   ", " + number;
        });
    transaction.commit();
    return CancelNumber;
}

} // namespace merchantry::purchasing
