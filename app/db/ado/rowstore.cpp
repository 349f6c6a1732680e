#include "app/db/ado/rowstore.h"

#include "base/textorder.h"

#include <algorithm>
#include <cstring>

namespace merchantry::db {
namespace {

constexpr std::size_t kBlock = 1U << 16U;

} // namespace

RowStore::RowStore(std::vector<Column> columns) : columns_(std::move(columns)), stride_(std::max<std::size_t>(columns_.size(), 1)) {}

int RowStore::columnOf(std::string_view name) const {
    for (std::size_t i = 0; i < columns_.size(); ++i)
        if (sameText(columns_[i].name, name))
            return static_cast<int>(i);
    return -1;
}

const char* RowStore::keep(std::string_view text) {
    const std::size_t size = text.size() + sizeof(std::uint32_t);
    if (used_ + size > room_) {
        room_ = std::max(kBlock, size);
        blocks_.push_back(std::make_unique_for_overwrite<char[]>(room_));
        used_ = 0;
    }
    char* const place = blocks_.back().get() + used_;
    const auto length = static_cast<std::uint32_t>(text.size());
    std::memcpy(place, &length, sizeof length);
    std::memcpy(place + sizeof length, text.data(), text.size());
    used_ += size;
    return place;
}

void RowStore::append(const RowView& row) {
    const int number = appendEmpty();
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        const int column = static_cast<int>(i);
        if (row.isNull(column))
            continue;
        const std::size_t cell = at(number, column);
        const SqlType& type = columns_[i].type;
        if (type.isText()) {
            payloads_[cell].text = keep(row.text(column));
            tags_[cell] = Tag::Text;
        } else if (type.isWhole() || type.isMoney() || type.isDate()) {
            payloads_[cell].number = row.number(column);
            tags_[cell] = Tag::Number;
        } else {
            set(number, column, row.value(column));
        }
    }
}

int RowStore::appendEmpty() {
    payloads_.resize(payloads_.size() + stride_);
    tags_.resize(tags_.size() + stride_);
    return rowCount() - 1;
}

void RowStore::set(int row, int column, const Value& value) {
    Payload& payload = payloads_[at(row, column)];
    Tag& tag = tags_[at(row, column)];
    const SqlType& type = columns_[static_cast<std::size_t>(column)].type;
    if (value.isNull()) {
        tag = Tag::Null;
    } else if (type.isText()) {
        payload.text = keep(value.toText());
        tag = Tag::Text;
    } else if (type.kind == TypeKind::Bit) {
        payload.number = value.toFlag() ? 1 : 0;
        tag = Tag::Number;
    } else if (type.isWhole()) {
        payload.number = value.toInteger();
        tag = Tag::Number;
    } else if (type.isMoney()) {
        payload.number = value.toCurrency().units();
        tag = Tag::Number;
    } else if (type.isDate() && value.is<Date>()) {
        payload.number = value.as<Date>().ms();
        tag = Tag::Number;
    } else if (type.isFloat()) {
        payload.real = value.toNumber();
        tag = Tag::Real;
    } else {
        others_.push_back(value);
        payload.other = others_.size() - 1;
        tag = Tag::Other;
    }
}

std::string_view RowStore::text(int row, int column) const {
    const std::size_t cell = at(row, column);
    if (tags_[cell] != Tag::Text)
        return {};
    const char* const place = payloads_[cell].text;
    std::uint32_t length = 0;
    std::memcpy(&length, place, sizeof length);
    return {place + sizeof length, length};
}

Value RowStore::value(int row, int column) const {
    const Payload& payload = payloads_[at(row, column)];
    const SqlType& type = columns_[static_cast<std::size_t>(column)].type;
    switch (tags_[at(row, column)]) {
    case Tag::Null:
        return {};
    case Tag::Text:
        return text(row, column);
    case Tag::Real:
        return payload.real;
    case Tag::Other:
        return others_[payload.other];
    case Tag::Number:
        break;
    }
    if (type.kind == TypeKind::Bit)
        return payload.number != 0;
    if (type.isMoney())
        return Currency::fromUnits(payload.number);
    if (type.isDate())
        return Date::fromMs(payload.number);
    return payload.number;
}

} // namespace merchantry::db
