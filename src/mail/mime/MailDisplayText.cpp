#include "mail/mime/MailDisplayText.h"

#include "platform/Cp1252.h"
#include "platform/GMimeRuntime.h"

#include <gmime/gmime.h>
#include <memory>

namespace mirel {
namespace {

const QByteArray kDefaultCharset = QByteArrayLiteral("windows-1252");

struct GFree {
    void operator()(char* p) const { g_free(p); }
};

bool meansWindows1252(const QByteArray& cs) {
    return cs == "windows-1252" || cs == "cp1252" || cs == "us-ascii" || cs == "ascii" ||
           cs == "iso-8859-1" || cs == "latin1" || cs == "iso_8859-1";
}

} // namespace

QString MailDisplayText::decodeHeader(QByteArrayView value) {
    GMimeRuntime::ensure();
    // Made once per thread: a folder's list decodes thousands of subjects.
    static thread_local const std::unique_ptr<GMimeParserOptions, void (*)(GMimeParserOptions*)>
        kOptions = [] {
            GMimeParserOptions* options = g_mime_parser_options_new();
            const char* fallback[] = {"UTF-8", "windows-1252", nullptr};
            g_mime_parser_options_set_fallback_charsets(options, fallback);
            return std::unique_ptr<GMimeParserOptions, void (*)(GMimeParserOptions*)>(
                options, g_mime_parser_options_free);
        }();
    GMimeParserOptions* options = kOptions.get();
    // GMime wants a C string: a NUL inside the value ends it, as it would
    // end the line on screen.
    const QByteArray text = value.toByteArray();
    std::unique_ptr<char, GFree> decoded(
        g_mime_utils_header_decode_text(options, text.constData()));
    return decoded ? QString::fromUtf8(decoded.get()) : Cp1252::toUnicode(value);
}

QByteArray MailDisplayText::charsetOf(QByteArrayView typeParameters) {
    GMimeRuntime::ensure();
    const QByteArray text = "text/plain; " + typeParameters.toByteArray();
    GMimeContentType* ct = g_mime_content_type_parse(nullptr, text.constData());
    QByteArray charset;
    if (ct) {
        if (const char* cs = g_mime_content_type_get_parameter(ct, "charset"))
            charset = QByteArray(cs).trimmed().toLower();
        g_object_unref(ct);
    }
    return charset.isEmpty() ? kDefaultCharset : charset;
}

QString MailDisplayText::decodeBody(QByteArrayView body, QByteArrayView charset) {
    const QByteArray cs = charset.toByteArray().trimmed().toLower();
    if (cs.isEmpty() || meansWindows1252(cs))
        return Cp1252::toUnicode(body);
    if (cs == "utf-8" || cs == "utf8") {
        QString s = QString::fromUtf8(body);
        // Mislabelled 8-bit text shows as what the sender most likely typed.
        return s.contains(QChar::ReplacementCharacter) ? Cp1252::toUnicode(body) : s;
    }
    GMimeRuntime::ensure();
    iconv_t cd = g_mime_iconv_open("UTF-8", cs.constData());
    if (cd == iconv_t(-1))
        return Cp1252::toUnicode(body);
    std::unique_ptr<char, GFree> out(g_mime_iconv_strndup(cd, body.data(), size_t(body.size())));
    g_mime_iconv_close(cd);
    return out ? QString::fromUtf8(out.get()) : Cp1252::toUnicode(body);
}

} // namespace mirel
