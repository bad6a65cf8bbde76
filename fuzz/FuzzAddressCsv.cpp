// Fuzz target: address files from strangers, through everything the import
// does with them short of writing files.
#include "organiser/AddressCsv.h"

#include <cstdint>
#include <cstdlib>

using namespace mirel;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const AddressCsv csv = AddressCsv::parse(bytes);
    FieldCaptions captions;
    const QList<QByteArray> columns = csv.columns();
    for (int k = 0; k < 17 && k < columns.size(); ++k)
        captions[k] = columns[columns.size() - 1 - k];
    const ColumnAssignment a = parseAssignment(bytes.left(200));
    const ColumnAssignment pre = preselectColumns(columns, captions);
    for (const QByteArray& record : csv.records) {
        if (record.contains('\0') || record.size() > AddressCsv::kMaxRecord)
            std::abort();
        for (const ColumnAssignment& assignment : {a, pre}) {
            const auto c = contactFromValues(AddressCsv::values(record, csv.separator), assignment);
            for (const QByteArray& f : c ? c->fields : Contact{}.fields)
                if (f.contains('\n') || f.contains('\r'))
                    std::abort();
        }
    }
    return 0;
}
