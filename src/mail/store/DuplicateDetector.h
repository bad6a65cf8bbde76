#pragma once
// The record of messages already received, "incomming.ini" in the mail
// root, read and written through the INI helpers:
//   [MESID]  <Message-ID without its angle brackets>=1
//   [MD5]    <32 lower-case hex digits>=1
// A message is known by its Message-ID; one without a Message-ID by the
// MD5 digest of the first 14 bytes of its body as fetched (the text after
// the blank line that ends the header block). Entries are never removed,
// and a message is recorded before it is stored.
//
// A Message-ID that an INI key cannot carry ("=" inside, a leading "[" or
// ";", line breaks) would never be found again and so be fetched anew on
// every run; such an ID is recorded by the MD5 digest of the whole ID
// instead, under the same section.
#include <QByteArray>
#include <QList>
#include <QString>

namespace mirel {

class IniHelpers;

/// IsDuplicateMessage and MD5Hex over one record file.
class DuplicateDetector {
  public:
    DuplicateDetector(IniHelpers& ini, QString recordFile);

    /// True when the message was received before; otherwise records it and
    /// returns false.
    bool IsDuplicateMessage(const QList<QByteArray>& headerLines, QByteArrayView body);

    /// MD5 of the first 14 bytes of text (zero bytes make up a shorter
    /// text), as 32 lower-case hex digits.
    static QByteArray MD5Hex(QByteArrayView text);
    /// The key a Message-ID line is recorded under; empty when the line
    /// carries no usable ID.
    static QByteArray messageIdKey(QByteArrayView headerLine);

  private:
    bool seenBefore(QByteArrayView section, const QByteArray& key);

    IniHelpers& m_ini;
    QString m_file;
};

} // namespace mirel
