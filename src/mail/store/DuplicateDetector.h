#pragma once
// The record of messages already received, "incomming.ini" in the mail
// root:
//   [MESID]  <Message-ID without its angle brackets and blanks>=1
//   [MD5]    <32 lower-case hex digits>=1
// A message is known by its Message-ID; one without a Message-ID by the
// MD5 digest of its whole body as fetched (the text after the blank line
// that ends the header block). Entries are never removed. Names compare
// without regard to case, as the INI files have always been read.
//
// A message is recorded only after it is wholly stored: remember() keeps
// its keys in memory (known at once for the rest of the session) and
// flush() makes them durable after the store has committed. A crash
// between the two leaves a stored message unrecorded, which costs at worst
// a second copy, never a lost message.
//
// The file is read once and then only appended to: each flush adds its
// keys under a repeated section header and syncs. Once the appended part
// outgrows the rest, the file is rewritten whole with one section each, so
// each key costs amortised O(1). A reader that looks only at the first
// section of a name misses the appended keys until then, and at worst
// stores a message once more.
//
// A Message-ID that an INI key cannot carry ("=" inside, a leading "[" or
// ";", line breaks) would never be found again and so be fetched anew on
// every run; such an ID is recorded by the MD5 digest of the whole ID
// instead, under the same section.
#include <QByteArray>
#include <QList>
#include <QSet>
#include <QString>

namespace mirel {

/// The record of received messages, over one file.
class DuplicateDetector {
public:
    struct Key {
        QByteArray section; // "MESID" or "MD5"
        QByteArray name;
        bool operator==(const Key&) const = default;
    };

    explicit DuplicateDetector(QString recordFile);

    /// The keys a message is recorded under: one per Message-ID line (every
    /// one counts: a message that carries two is known by either), or the
    /// digest of the body when it has none.
    static QList<Key> keysOf(const QList<QByteArray>& headerLines, QByteArrayView body);
    bool isKnown(const QList<Key>& keys);
    /// Known from now on; written by the next flush().
    void remember(const QList<Key>& keys);
    /// Writes the remembered keys and syncs; false when the file could not
    /// be written (the keys stay remembered for the next try).
    bool flush();
    /// Forgets the keys remembered since the last flush (their messages
    /// were not stored after all).
    void dropPending();
    /// Records the messages of these header blocks that are not known yet:
    /// stored messages whose record a crash cut off.
    void adoptStored(const QList<QByteArray>& headerBlocks);

    /// MD5 of the whole text, as 32 lower-case hex digits.
    static QByteArray MD5Hex(QByteArrayView text);
    /// The key a Message-ID line is recorded under; empty when the line
    /// carries no usable ID.
    static QByteArray messageIdKey(QByteArrayView headerLine);

private:
    void load();
    QSet<QByteArray>& known(const QByteArray& section);
    bool rewrite();

    QString m_file;
    bool m_loaded = false;
    QSet<QByteArray> m_mesid, m_md5; // folded names
    QList<Key> m_entries;            // every key, in file order
    QList<Key> m_pending;            // remembered, not yet written
    qint64 m_baseBytes = 0, m_appendedBytes = 0;
};

} // namespace mirel
