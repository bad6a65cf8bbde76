// Fuzz target: the view page of a received message and its list line. The
// first half of the input is the text body, the rest the HTML body and the
// header lines; the same bytes also stand in for a list line. Run it with a
// time bound per input (-timeout=2): page building must stay linear.
#include "mail/view/MessageListLine.h"
#include "mail/view/MessagePage.h"

#include <cstdint>
#include <cstdlib>

using namespace mirel;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const QByteArray text = bytes.left(bytes.size() / 2);
    const QByteArray html = bytes.mid(bytes.size() / 2);

    const QByteArray textPage = MessagePage::fromText(text);
    if (!textPage.startsWith("<HTML><HEAD><TITLE></TITLE></HEAD>") || !textPage.endsWith("</HTML>"))
        std::abort();
    // Addresses inside addresses are linked again, but the page stays a
    // bounded multiple of the message: one long address must not explode.
    if (textPage.size() > 64 * (text.size() + 100))
        std::abort();
    const QByteArray htmlPage = MessagePage::fromHtml(html);
    // The repair completes a cut end tag it found.
    if (html.toUpper().contains("</HT") &&
        !MessagePage::repairEndTag(html).toUpper().contains("</HTML>"))
        std::abort();
    const QByteArray charset = MessagePage::displayCharset(htmlPage, text);
    if (charset.isEmpty())
        std::abort();

    const MessageListLine line = MessageListLine::parse(bytes);
    MessageListLine::columnsOf(bytes);
    const MessageListLine read = MessageListLine::parse(MessageListLine::markedRead(bytes));
    if (read.readed != "1" || read.id != line.id || read.to != line.to ||
        read.subject != line.subject)
        std::abort();
    return 0;
}
