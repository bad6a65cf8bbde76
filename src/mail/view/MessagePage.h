#pragma once
// The page a message is shown as. The viewer's background is black, so a
// plain-text message is wrapped in a black page with white text and its web
// addresses made into links, and an HTML message gets a black body with
// white text unless it is dark already. Links open outside the viewer. The
// page is built on the stored bytes as they are: nothing is escaped or
// re-encoded, so what is written to disk is byte for byte the page the
// rules make.
#include <QByteArray>

namespace mirel {

/// Building the view page of a message from its stored bodies.
class MessagePage {
public:
    /// The HTML body when there is one, else the text body, made into a page.
    static QByteArray build(QByteArrayView text, QByteArrayView html);

    static QByteArray fromText(QByteArrayView text);
    static QByteArray fromHtml(QByteArrayView html);

    /// Turns every "http://" address (any letter case) into a link that
    /// opens in a new window. An address ends at a line break, a blank or
    /// the next tag.
    static QByteArray linkAddresses(QByteArray page);
    /// Completes a cut-off "</HTML>" end tag.
    static QByteArray repairEndTag(QByteArray page);

    /// The character set a message's bytes are read in for display: a meta
    /// tag of its HTML body (as stored), else the charset the message's Content-Type header
    /// declares, else Windows-1252.
    static QByteArray displayCharset(QByteArrayView page, QByteArrayView headers);
};

} // namespace mirel
