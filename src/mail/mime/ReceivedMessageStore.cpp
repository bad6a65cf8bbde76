#include "mail/mime/ReceivedMessageStore.h"

#include "mail/mime/MailDisplayText.h"
#include "mail/store/BodyCharsets.h"
#include "mail/store/DuplicateDetector.h"
#include "mail/store/MailStore.h"

namespace mirel {

ReceivedMessageStore::ReceivedMessageStore(MailStore& store, DuplicateDetector& duplicates)
    : m_store(store), m_duplicates(duplicates) {}

ReceivedMessageStore::~ReceivedMessageStore() {
    commit();
}

bool ReceivedMessageStore::commit() {
    if (!m_writer)
        return true;
    if (!m_writer->commit()) {
        m_duplicates.dropPending();
        return false;
    }
    // Stored is what counts: a record that cannot be written now is tried
    // again with the next commit, and costs at worst a second copy.
    m_duplicates.flush();
    return true;
}

bool ReceivedMessageStore::isEncoded(QByteArrayView enc) {
    return enc == "quoted-printable" || enc == "base64" || enc == "mac-binhex40" ||
           enc == "x-uuencode";
}

QByteArray ReceivedMessageStore::indexText(QByteArrayView value) {
    QByteArrayView v = value.first(std::min(value.size(), MailStore::kTextFieldSize));
    while (!v.isEmpty() && v.front() == ' ')
        v = v.sliced(1);
    while (!v.isEmpty() && v.back() == ' ')
        v.chop(1);
    return v.toByteArray();
}

bool ReceivedMessageStore::StoreReceivedMessage(QByteArrayView raw, QByteArrayView folder) {
    return store(raw, folder) == Result::Stored;
}

ReceivedMessageStore::Result ReceivedMessageStore::store(QByteArrayView raw,
                                                         QByteArrayView folder) {
    // The parts are written before this returns, while raw is still there:
    // they need not be copied out of it.
    return store(MimeMessage::parse(raw, MimeMessage::kDefaultDepth, MimeMessage::Bytes::Borrowed),
                 raw.sliced(MimeMessage::bodyOffset(raw)), folder);
}

ReceivedMessageStore::Result ReceivedMessageStore::store(const MimeMessage& mail,
                                                         QByteArrayView folder) {
    return store(mail, mail.body(), folder);
}

ReceivedMessageStore::Result
ReceivedMessageStore::store(const MimeMessage& mail, QByteArrayView body, QByteArrayView folder) {
    // Every lookup happens before anything of the message is written, so a
    // message that repeats its own Message-ID line is not its own duplicate.
    const QList<DuplicateDetector::Key> keys = DuplicateDetector::keysOf(mail.headerLines(), body);
    if (m_duplicates.isKnown(keys))
        return Result::Duplicate;

    NewIndexFields fields;
    fields.subject = indexText(mail.subject());
    fields.from = indexText(mail.sender());
    fields.to = indexText(mail.recipient());
    fields.date = mail.date();

    MessageRow row;
    qsizetype headerBytes = 0;
    for (const QByteArray& line : mail.headerLines())
        headerBytes += line.size() + 2;
    row.headers.reserve(headerBytes);
    for (const QByteArray& line : mail.headerLines())
        row.headers.append(line).append("\r\n");

    m_text.clear();
    m_html.clear();
    m_charsets = {};
    m_attachments.clear();
    const MimeEntity& root = mail.root();
    if (!root.parts.empty()) {
        for (const MimeEntity& part : root.parts) {
            if (part.parts.empty()) {
                StoreMessagePart(part);
                continue;
            }
            for (const MimeEntity& sub : part.parts)
                StoreMessagePart(sub);
        }
    } else {
        StoreMessagePart(root);
    }
    row.text = std::move(m_text);
    row.html = std::move(m_html);
    row.textCharset = m_charsets.text;
    row.htmlCharset = m_charsets.html;

    if (m_writer && m_writer->folder() != folder) {
        commit();
        m_writer.reset();
    }
    if (!m_writer)
        m_writer = std::make_unique<MailStore::Writer>(m_store, folder);
    const std::optional<qint32> id = m_writer->add(fields, row, m_attachments);
    m_attachments.clear();
    if (!id)
        return Result::Failed;
    m_duplicates.remember(keys);
    if (!m_grouped && !commit())
        return Result::Failed;
    m_lastId = *id;
    return Result::Stored;
}

QByteArray ReceivedMessageStore::attachmentFilename(const MimeEntity& part) {
    // Readers take the name from the first quoted text; a name that is not
    // written there plainly (encoded, or only in the disposition) is put
    // in front in that form.
    const QByteArray& params = part.typeParameters;
    QByteArray name = MailDisplayText::decodeHeader(part.fileName).toUtf8().trimmed();
    name.replace('"', '\'');
    const qsizetype open = params.indexOf('"');
    const qsizetype close = open < 0 ? -1 : params.indexOf('"', open + 1);
    if (name.isEmpty() || (close > open && params.mid(open + 1, close - open - 1) == name))
        return params;
    return "name=\"" + name + '"' + (params.isEmpty() ? QByteArray() : "; " + params);
}

void ReceivedMessageStore::StoreMessagePart(const MimeEntity& part) {
    QByteArray content = isEncoded(part.transferEncoding) ? part.decodedBody() : part.rawBody;
    // A named or attached text part is a file the sender sent, not the body.
    const bool body = part.disposition != "attachment" && part.fileName.isEmpty();
    if (body && part.type == "text" && part.subtype == "plain") {
        if (m_text.isEmpty()) {
            m_text = std::move(content);
            m_charsets.text = part.charset;
        }
        return;
    }
    if (body && part.type == "text" && part.subtype == "html") {
        if (m_html.isEmpty()) {
            m_html = std::move(content);
            m_charsets.html = part.charset;
        }
        return;
    }
    m_attachments.push_back({attachmentFilename(part), std::move(content)});
}

} // namespace mirel
