#include "purchasing/orders.h"

#include "app/modMain.h"

namespace merchantry::purchasing {

std::int32_t PONumberToPOID(std::int32_t PONumber) {
    const auto order = app::openDirect(db::Sql("sp_PONumber2POID ") + PONumber);
    return order->Eof() ? 0 : (*order)["POID"].Value().toInt32();
}

} // namespace merchantry::purchasing
