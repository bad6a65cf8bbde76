#pragma once
#include <QByteArray>
#include <QList>
#include <QString>
#include <utility>

namespace mirel {

/// One message as the outbox hands it to the SMTP client: texts are
/// Windows-1252 bytes; address lists are separated by commas.
struct OutgoingMail {
    struct Attachment {
        QByteArray fileName; // as the recipient sees it
        QString path;        // read from this file when set...
        QByteArray data;     // ...else these bytes are sent
    };

    QByteArray from; // "\"Name\" <address>" or a bare address
    QByteArray to, cc, bcc;
    QByteArray subject;
    QByteArray text, html;
    QList<std::pair<QByteArray, QByteArray>> headers; // further header lines
    QList<Attachment> attachments;
};

} // namespace mirel
