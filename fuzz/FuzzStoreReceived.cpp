// Fuzz target: arbitrary bytes stored as a received message into a real
// store in a temporary folder. Whatever the bytes, storing ends, the rows it
// reports are there, and the message can be deleted again.
#include "mail/mime/MailDisplayText.h"
#include "mail/mime/ReceivedMessageStore.h"
#include "mail/store/DuplicateDetector.h"
#include "mail/store/MailStore.h"
#include "platform/MessageSink.h"
#include "platform/SettingsStore.h"
#include "settings/IniHelpers.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cstdint>
#include <cstdlib>

using namespace mirel;

namespace {

struct CountingSink final : MessageSink {
    int shown = 0;
    void showMessage(const QString&, const QString&, Icon) override { ++shown; }
    bool askYesNo(const QString&, const QString&) override { return false; }
};

struct Fixture {
    // On a memory file system where there is one: each run commits a few
    // transactions, and syncing them to a disk would be most of the time.
    QTemporaryDir dir{QDir("/dev/shm").exists() ? QStringLiteral("/dev/shm/mirel-fuzz-XXXXXX")
                                                : QDir::tempPath() + "/mirel-fuzz-XXXXXX"};
    SystemClock clock;
    CountingSink sink;
    SettingsStore settings{dir.path() + "/config"};
    IniHelpers ini{sink, settings};
    MailStore store{dir.path(), clock, sink};
    Fixture() { store.MailStoreStartup(ini); }
};

void walk(const MimeEntity& e) {
    (void)e.decodedBody();
    (void)MailDisplayText::decodeBody(e.rawBody.left(4096),
                                      MailDisplayText::charsetOf(e.typeParameters));
    for (const MimeEntity& p : e.parts)
        walk(p);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Fixture f;
    const QByteArray raw(reinterpret_cast<const char*>(data), qsizetype(size));

    // The full tree too, not only the two levels storing opens.
    const MimeMessage deep = MimeMessage::parse(raw, 64);
    walk(deep.root());
    (void)MailDisplayText::decodeHeader(deep.subject());

    QFile::remove(f.store.incomingRecordPath()); // every input is new mail
    DuplicateDetector duplicates(f.store.incomingRecordPath());
    ReceivedMessageStore received(f.store, duplicates);
    const MimeMessage mail = MimeMessage::parse(raw);
    if (received.store(mail, "0") != ReceivedMessageStore::Result::Stored || f.sink.shown)
        std::abort();
    const qint32 id = received.lastId();
    const auto index = f.store.readIndexRow("0", id);
    if (!index || !f.store.readMessageRow("0", id) ||
        size_t(index->attachments) != f.store.readAttachments("0", id).size())
        std::abort();
    if (!f.store.DeleteMessage("0", id) || f.store.readIndexRow("0", id))
        std::abort();
    return 0;
}
