#include "reports/engine/barcode.h"

#include "reports/engine/textfit.h"

#include <algorithm>
#include <memory>
#include <zint.h>

namespace merchantry::reports {
namespace {

constexpr int kQuietModules = 11; // EAN-13 wants eleven at the left, the others no more
constexpr int kTextSize = 14;     // half points
constexpr int kTextHeight = kTextSize * 13;

bool allDigits(const std::string& code) {
    return std::all_of(code.begin(), code.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// The last digit makes the weighted sum a multiple of ten: weights 3 and 1 by turns from the right, beginning before the check digit.
bool checkDigitHolds(const std::string& code) {
    int sum = 0;
    for (std::size_t i = 0; i < code.size(); ++i)
        sum += (code[code.size() - 1 - i] - '0') * (i % 2 == 0 ? 1 : 3);
    return sum % 10 == 0;
}

BarcodeKind kindFor(const std::string& code, BarcodeKind wanted) {
    if (wanted != BarcodeKind::Auto)
        return wanted;
    if (allDigits(code) && (code.size() == 12 || code.size() == 13) && checkDigitHolds(code))
        return code.size() == 13 ? BarcodeKind::Ean13 : BarcodeKind::UpcA;
    return BarcodeKind::Code128;
}

int symbologyOf(BarcodeKind kind) {
    switch (kind) {
    case BarcodeKind::Ean13:
        return BARCODE_EANX;
    case BarcodeKind::UpcA:
        return BARCODE_UPCA;
    case BarcodeKind::Code39:
        return BARCODE_CODE39;
    default:
        return BARCODE_CODE128;
    }
}

// Twelve or thirteen digits for EAN-13, eleven or twelve for UPC-A: zint takes shorter ones for other codes of their families.
bool fits(const std::string& code, BarcodeKind kind) {
    if (kind == BarcodeKind::Ean13)
        return allDigits(code) && (code.size() == 12 || (code.size() == 13 && checkDigitHolds(code)));
    if (kind == BarcodeKind::UpcA)
        return allDigits(code) && (code.size() == 11 || (code.size() == 12 && checkDigitHolds(code)));
    return !code.empty();
}

} // namespace

std::optional<Bars> barsOf(const std::string& code, BarcodeKind wanted) {
    const BarcodeKind kind = kindFor(code, wanted);
    if (!fits(code, kind))
        return std::nullopt;
    const std::unique_ptr<zint_symbol, void (*)(zint_symbol*)> symbol(ZBarcode_Create(), ZBarcode_Delete);
    symbol->symbology = symbologyOf(kind);
    const int outcome = ZBarcode_Encode(symbol.get(), reinterpret_cast<const unsigned char*>(code.data()), static_cast<int>(code.size()));
    if (outcome >= ZINT_ERROR || symbol->rows != 1)
        return std::nullopt;
    Bars bars;
    bars.modules = symbol->width;
    bars.text = reinterpret_cast<const char*>(symbol->text);
    bool dark = true;
    for (int module = 0; module < symbol->width; ++module) {
        const bool isDark = ((symbol->encoded_data[0][module >> 3] >> (module & 7)) & 1) != 0;
        if (bars.widths.empty() || isDark != dark)
            bars.widths.push_back(0);
        dark = isDark;
        ++bars.widths.back();
    }
    return bars;
}

void drawBarcode(ui::Page& page, const PageBox& box, const std::string& code, const BarcodeDefinition& definition,
                 const ui::TextMeasure& measure) {
    const auto bars = barsOf(code, definition.kind);
    const auto text = [&](const std::string& words, int y) {
        ui::PageItem item;
        item.x = box.x;
        item.y = y;
        item.width = box.width;
        item.height = kTextHeight;
        item.text = cutToWidth(measure, words, box.width, kTextSize, false);
        item.halfPoints = kTextSize;
        item.align = ui::PageAlign::Center;
        page.items.push_back(std::move(item));
    };
    if (!bars) {
        text("(no barcode) " + code, box.y);
        return;
    }
    // Whole twips a module, so that all bars of one width print alike.
    const int module = std::max(1, box.width / (bars->modules + 2 * kQuietModules));
    const int height = std::max(kTextHeight, box.height - (definition.text ? kTextHeight : 0));
    int x = box.x + (box.width - module * bars->modules) / 2;
    bool dark = true;
    for (const int width : bars->widths) {
        if (dark) {
            ui::PageItem bar;
            bar.kind = ui::PageItem::Kind::Box;
            bar.x = x;
            bar.y = box.y;
            bar.width = width * module;
            bar.height = height;
            bar.fill = ui::PageInk::Black;
            page.items.push_back(std::move(bar));
        }
        x += width * module;
        dark = !dark;
    }
    if (definition.text)
        text(bars->text, box.y + height);
}

} // namespace merchantry::reports
