#include "app/db/dberror.h"

namespace merchantry::db {

std::uint32_t DbError::hresult() const {
    if (hresult_ != 0)
        return hresult_;
    switch (category_) {
    case Category::Integrity:
        return kIntegrityError;
    case Category::Conflict:
        return kConflict;
    case Category::Syntax:
    case Category::Name:
    case Category::Unsupported:
        return kSyntaxError;
    default:
        return kGeneralError;
    }
}

} // namespace merchantry::db
