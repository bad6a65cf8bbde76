// Fuzz target: the INI reader and its edits on arbitrary bytes. Lookups must
// agree with the edits they follow, and untouched bytes must survive.
#include "platform/IniDocument.h"

#include <cstdint>
#include <cstdlib>

using namespace mirel;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    IniDocument doc(bytes);
    for (const QByteArray& s : doc.sectionNames())
        for (const QByteArray& k : doc.keyNames(s))
            if (doc.value(s, k) != IniDocument::lookup(bytes, s, k))
                std::abort(); // the fast path must agree with the line table

    // Names taken from the input itself, so edits hit existing sections too.
    const QByteArray section = bytes.left(8).replace('\n', 'n').replace('\r', 'r').replace(']', ')');
    const QByteArray key = bytes.mid(8, 6).replace('\n', 'n').replace('\r', 'r').replace('=', '-');
    const QByteArray trimmedKey = key.trimmed();
    if (trimmedKey.isEmpty() || trimmedKey.startsWith(';') || trimmedKey.startsWith('[') ||
        section.trimmed().isEmpty() || section.contains('\0') || key.contains('\0'))
        return 0;
    doc.setValue(section.trimmed(), trimmedKey, "value");
    if (doc.value(section.trimmed(), trimmedKey) != QByteArray("value"))
        std::abort();
    // A batch write must equal the same writes made one by one.
    const QList<std::pair<QByteArray, QByteArray>> kv = {
        {trimmedKey, "1"}, {"other", "2"}, {trimmedKey.toUpper(), "3"}};
    IniDocument batch(bytes), single(bytes);
    batch.setValues(section.trimmed(), kv);
    for (const auto& [k, v] : kv)
        single.setValue(section.trimmed(), k, v);
    if (batch.bytes() != single.bytes())
        std::abort();
    doc.removeKey(section.trimmed(), trimmedKey);
    doc.removeSection(section.trimmed());
    return 0;
}
