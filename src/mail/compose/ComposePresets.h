#pragma once
// What new message, reply and forward hand to the compose window, and the
// rules that turn a shown message into those presets. The presets live for
// the whole run; each command sets all of them before the window opens, and
// the window only reads them.
#include "mail/transport/EmailAccountList.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QTimeZone>

namespace mirel {

/// The compose presets and the forwarded-attachment list lstForward.
struct ComposePresets {
    QByteArray quoteHeader, quotedHtml, quotedText, to, subject;
    /// One entry per file: full path, the character 1, the display name.
    QList<QByteArray> lstForward;
    /// What the quoted bodies' bytes are read in.
    QByteArray charset = "windows-1252";

    /// A new message: nothing quoted, nothing preset, nothing forwarded.
    void clearForNew() { *this = {}; }
};

/// The captions of the quote banner, from the skin's "EMAILSEND" section.
struct QuoteTexts {
    QByteArray reply, from, to, date, subject;
};

/// The message being answered, as its message-list line gives it.
struct AnsweredMessage {
    QByteArray from, to, date, subject;
};

/// Reply, forward and send rules of the compose window, on plain values.
class ComposeRules {
public:
    static inline const QString kNoAccount =
        QStringLiteral("No Accounts configured, cannot send email!");
    static inline const QString kEmptyTo = QStringLiteral("TO field is empty, cannot send email!");
    static inline const QByteArray kBlankDocument =
        "<HTML><HEAD><base target=_blank></HEAD><BODY BGCOLOR=#000000 TEXT=#FFFFFF></Body></HTML>";

    /// "Re: " before the subject unless it already starts with "RE: " (any case).
    static QByteArray replySubject(QByteArrayView subject);
    /// The grey banner and the From/To/Date/Subject lines above a quote.
    static QByteArray quoteHeader(const QuoteTexts& texts, const AnsweredMessage& m);
    /// The reply presets (forwarded list untouched).
    static void presetReply(ComposePresets& p, const QuoteTexts& texts, const AnsweredMessage& m,
                            const QByteArray& html, const QByteArray& text);
    /// The editor's first document: the quoted HTML, the quoted text as HTML,
    /// or an empty black page.
    static QByteArray initialDocument(const ComposePresets& p);

    /// Text as HTML in Windows-1252: markup characters escaped, line breaks
    /// as BR, characters outside the code page as numeric references.
    static QByteArray htmlText(const QString& text);

    /// The full path when it has at most 12 characters, else its last 12.
    static QString attachmentDisplayName(const QString& path);
    /// Splits a lstForward entry into path and display name.
    static std::pair<QString, QString> forwardEntry(const QByteArray& entry);

    /// Offset from UTC in seconds (east positive) at the given moment in the
    /// given zone; name gets the zone's abbreviation.
    static int GetLocalTZ(const QDateTime& when, const QTimeZone& zone, QByteArray& name);
    /// "+0100", "-0300", "+0545".
    static QByteArray zoneText(int offsetSeconds);
    /// "Mon, 2 Mar 2026 09:05:07 +0100": the moment shown in the zone.
    static QByteArray dateText(const QDateTime& when, const QTimeZone& zone);

    /// Positions of the accounts that can send (address and sender name set).
    static QList<qsizetype> usableAccounts(const EmailAccountList& accounts);
    /// The entry of usable to preselect: the default account's, else the
    /// first; -1 when none can send.
    static qsizetype preselectedEntry(const EmailAccountList& accounts,
                                      const QList<qsizetype>& usable);
};

} // namespace mirel
