#pragma once

#include "exchange/import/importwriting.h"
#include "exchange/import/recordplan.h"

namespace merchantry::exchange {

// Writes a plan of suppliers or customers, field by field, each compared with what stood there.
class RecordWriting : public ImportWriting {
public:
    RecordWriting(db::Session& session, const RecordPlan& plan, const ImportFile& file);
    int step() override;

private:
    void writeRow(const RecordPlan::Row& row);
    int made(const RecordPlan::Row& row);
    void writeField(int id, int field, const std::string& after, const RecordsInStore::Record* stored);
    void noteUpdate(int id);

    const RecordPlan& records_;
    bool open_ = false;
    bool done_ = false;
    int next_ = 0;
};

// Takes back what an import made of records other than items, as part of a transaction; gives what was changed since instead, and has done
// nothing that may stay then.
std::vector<std::string> takenBackFields(db::Session& session, std::int32_t run);

} // namespace merchantry::exchange
