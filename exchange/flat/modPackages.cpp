#include "exchange/flat/modPackages.h"

#include "app/aside.h"
#include "app/db/work.h"
#include "app/modMain.h"
#include "app/titles.h"
#include "base/lettercase.h"
#include "base/newfile.h"
#include "base/text.h"
#include "exchange/flat/flatfile.h"
#include "ui/desk.h"

#include <fstream>
#include <set>

namespace merchantry::exchange {
namespace {

using app::modMain;
using Path = std::filesystem::path;
using Rows = std::vector<FlatRow>;

constexpr const char* kItemTag = "MR_frmImportItems";

// A step's work beside the desk: on its own session, asked to go on with the rows done. False when it stopped half-way.
using Step = std::function<bool(db::Session& session, const FlatProgress& goOn)>;

bool runStep(const FlatPackage& package, const std::string& what, const Step& step) {
    const auto session = app::sessionAside();
    bool whole = false;
    try {
        const bool ended = app::runAside(
            *modMain().desk, what,
            [&](app::AsideState& state) {
                whole = step(*session, [&state](int rows) {
                    state.rows = rows;
                    return !state.stop;
                });
            },
            [&session] { session->cancel(); });
        return ended && whole;
    } catch (const FlatError& error) {
        modMain().desk->message(std::string(package.name) + " failed\r\n" + error.source() + "\r\n" + error.what(), app::kProduct);
    } catch (const db::DbError& error) {
        modMain().desk->message(std::string(package.name) + " failed\r\n" + kFlatStore + "\r\n" + error.what(), app::kProduct);
    }
    return false;
}

std::ifstream opened(const Path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw FlatError(kFlatFile, "The file " + file.string() + " cannot be read.");
    return stream;
}

bool exportTo(const Path& file, const char* name) {
    const FlatPackage& package = flatPackage(name);
    return runStep(package, "Writing " + file.filename().string() + " …", [&](db::Session& session, const FlatProgress& goOn) {
        try {
            NewFile target(file);
            if (!exportRows(session, package, target.out, goOn))
                return false;
            target.finish();
            return true;
        } catch (const FlatError&) {
            throw;
        } catch (const db::DbError&) {
            throw;
        } catch (const std::runtime_error& error) {
            throw FlatError(kFlatFile, error.what());
        }
    });
}

std::optional<Rows> rowsOf(db::Session& session, const FlatPackage& package, const Path& file, const FlatProgress& goOn) {
    std::ifstream stream = opened(file);
    return readRows(session, package, stream, goOn);
}

bool importInto(const Path& file, const FlatPackage& package, const Step& step) {
    return runStep(package, "Reading " + file.filename().string() + " …", step);
}

bool importFrom(const Path& file, const char* name) {
    const FlatPackage& package = flatPackage(name);
    return importInto(file, package, [&](db::Session& session, const FlatProgress& goOn) {
        const auto rows = rowsOf(session, package, file, goOn);
        if (!rows)
            return false;
        db::Work work(session);
        if (!appendRows(session, package, *rows, goOn))
            return false;
        work.commit();
        return true;
    });
}

// The items of the store, as their codes compare.
class Items : public db::ResultSink {
public:
    explicit Items(db::Session& session) { session.execute("SELECT SKU, MatrixSKU FROM Item", *this); }
    void beginSet(const std::vector<db::Column>&) override {}
    void row(const db::RowView& row) override { keys_.insert(key(row.text(0), row.text(1))); }
    // Of a row whose first two values are the codes.
    bool has(const FlatRow& row) const {
        return !row.values[0].isNull() && !row.values[1].isNull() && keys_.contains(key(row.values[0].toText(), row.values[1].toText()));
    }

private:
    static std::string key(std::string_view sku, std::string_view matrixSku) {
        return lowerCase(trimmedRight(sku)) + '|' + lowerCase(trimmedRight(matrixSku));
    }
    std::set<std::string> keys_;
};

const FlatPackage& stockPackage() {
    return flatPackage("dts_StockImport");
}
const FlatPackage& itemPackage() {
    return flatPackage("dts_TillmarkItemImport");
}

bool bringsItems(const Path& file) {
    std::ifstream stream = opened(file);
    return hasColumns(itemPackage(), stream);
}

// The stock of the file for items that the store does not have; none where the file tells none, or one cell of it is bad.
Rows stockOfNewItems(db::Session& session, const Path& file) {
    try {
        auto rows = rowsOf(session, stockPackage(), file, [](int) { return true; });
        const Items items(session);
        std::erase_if(*rows, [&](const FlatRow& row) { return items.has(row); });
        return std::move(*rows);
    } catch (const FlatError&) {
        return {};
    }
}

bool appendStock(db::Session& session, const Path& file, const FlatProgress& goOn) {
    auto rows = rowsOf(session, stockPackage(), file, goOn);
    if (!rows)
        return false;
    if (bringsItems(file)) {
        const Items items(session);
        std::erase_if(*rows, [&](const FlatRow& row) { return !items.has(row); });
    }
    db::Work work(session);
    if (!appendRows(session, stockPackage(), *rows, goOn))
        return false;
    work.commit();
    return true;
}

bool appendItems(db::Session& session, const Path& file, const FlatProgress& goOn) {
    const auto rows = rowsOf(session, itemPackage(), file, goOn);
    if (!rows)
        return false;
    const Rows stock = stockOfNewItems(session, file);
    db::Work work(session);
    if (!appendRows(session, itemPackage(), *rows, goOn) || !appendRows(session, stockPackage(), stock, goOn))
        return false;
    work.commit();
    return true;
}

// The functions of items report what no step foresaw.
bool reported(const char* procedure, const std::function<bool()>& package) {
    bool done = false;
    return app::guarded({kItemTag, procedure}, [&] { done = package(); }) && done;
}

} // namespace

bool ExportCust(const Path& file) {
    return exportTo(file, "CustomerExport");
}

bool ExportItemData(const Path& file) {
    return reported("Export Data", [&] { return exportTo(file, "dts_StockExport"); });
}

bool ExportSuppliers(const Path& file) {
    return exportTo(file, "SupplierExport");
}

bool ImportCust(const Path& file) {
    return importFrom(file, "ImportCust");
}

bool ImportData(const Path& file) {
    return reported("Import Data", [&] {
        return importInto(file, itemPackage(),
                          [&](db::Session& session, const FlatProgress& goOn) { return appendItems(session, file, goOn); });
    });
}

bool ImportStock(const Path& file) {
    return reported("Import Data", [&] {
        return importInto(file, stockPackage(),
                          [&](db::Session& session, const FlatProgress& goOn) { return appendStock(session, file, goOn); });
    });
}

bool ImportSupp(const Path& file) {
    return importFrom(file, "ImportSupp");
}

} // namespace merchantry::exchange
