#include "purchasing/orders.h"

#include "app/modMain.h"

namespace merchantry::purchasing {

std::int16_t PONumberToPOID(std::int16_t PONumber) {
    const auto order = app::openDirect(db::Sql("sp_PONumber2POID ") + int{PONumber});
    return order->Eof() ? std::int16_t{0} : (*order)["POID"].Value().toInt16();
}

} // namespace merchantry::purchasing
