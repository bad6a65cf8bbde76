#include "platform/MimeMessage.h"

#include "platform/GMimeRuntime.h"
#include "platform/TransferDecoder.h"

#include <algorithm>
#include <gmime/gmime.h>

namespace mirel {
namespace {

template <typename T> struct Unref {
    void operator()(T* p) const {
        if (p)
            g_object_unref(p);
    }
};
template <typename T> using GPtr = std::unique_ptr<T, Unref<T>>;

// Folded lines join into one; the line breaks themselves go.
QByteArray unfold(const char* text) {
    QByteArray v(text ? text : "");
    v.removeIf([](char c) { return c == '\r' || c == '\n'; });
    return v;
}

QByteArray rawHeader(GMimeObject* obj, const char* name) {
    GMimeHeaderList* list = g_mime_object_get_header_list(obj);
    GMimeHeader* h = list ? g_mime_header_list_get_header(list, name) : nullptr;
    return h ? unfold(g_mime_header_get_raw_value(h)).trimmed() : QByteArray();
}

QByteArray streamBytes(GMimeStream* stream) {
    GPtr<GMimeStream> mem(g_mime_stream_mem_new());
    g_mime_stream_reset(stream);
    g_mime_stream_write_to_stream(stream, mem.get());
    GByteArray* bytes = g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(mem.get()));
    return QByteArray(reinterpret_cast<const char*>(bytes->data), qsizetype(bytes->len));
}

QByteArray contentAsTransmitted(GMimeObject* obj) {
    if (GMIME_IS_PART(obj)) {
        GMimeDataWrapper* content = g_mime_part_get_content(GMIME_PART(obj));
        GMimeStream* stream = content ? g_mime_data_wrapper_get_stream(content) : nullptr;
        return stream ? streamBytes(stream) : QByteArray();
    }
    GPtr<GMimeStream> mem(g_mime_stream_mem_new());
    g_mime_object_write_content_to_stream(obj, nullptr, mem.get());
    GByteArray* bytes = g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(mem.get()));
    return QByteArray(reinterpret_cast<const char*>(bytes->data), qsizetype(bytes->len));
}

MimeEntity build(GMimeObject* obj, int level, int depth) {
    MimeEntity e;
    if (GMimeContentType* ct = g_mime_object_get_content_type(obj)) {
        if (const char* t = g_mime_content_type_get_media_type(ct))
            e.type = QByteArray(t).toLower();
        if (const char* s = g_mime_content_type_get_media_subtype(ct))
            e.subtype = QByteArray(s).toLower();
    }
    const QByteArray contentType = rawHeader(obj, "Content-Type");
    if (const qsizetype semi = contentType.indexOf(';'); semi >= 0)
        e.typeParameters = contentType.mid(semi + 1).trimmed();
    e.transferEncoding = rawHeader(obj, "Content-Transfer-Encoding");

    if (GMIME_IS_MULTIPART(obj) && level < depth) {
        GMimeMultipart* mp = GMIME_MULTIPART(obj);
        const int count = g_mime_multipart_get_count(mp);
        e.parts.reserve(size_t(std::max(count, 0)));
        for (int i = 0; i < count; ++i)
            e.parts.push_back(build(g_mime_multipart_get_part(mp, i), level + 1, depth));
    } else {
        e.rawBody = contentAsTransmitted(obj);
    }
    return e;
}

struct Line {
    gint64 offset;
    QByteArray text;
};

void collectHeaders(GMimeObject* obj, std::vector<Line>& out) {
    GMimeHeaderList* list = obj ? g_mime_object_get_header_list(obj) : nullptr;
    if (!list)
        return;
    const int n = g_mime_header_list_get_count(list);
    for (int i = 0; i < n; ++i) {
        GMimeHeader* h = g_mime_header_list_get_header_at(list, i);
        out.push_back({g_mime_header_get_offset(h), QByteArray(g_mime_header_get_name(h)) + ':' +
                                                        unfold(g_mime_header_get_raw_value(h))});
    }
}

} // namespace

QByteArray MimeEntity::decodedBody() const {
    return TransferDecoder::decode(rawBody, TransferDecoder::fromName(transferEncoding));
}

qsizetype MimeMessage::bodyOffset(QByteArrayView raw) {
    if (raw.startsWith("\r\n"))
        return 2;
    if (raw.startsWith("\n"))
        return 1;
    for (qsizetype i = raw.indexOf('\n'); i >= 0; i = raw.indexOf('\n', i + 1)) {
        if (i + 1 < raw.size() && raw[i + 1] == '\n')
            return i + 2;
        if (i + 2 < raw.size() && raw[i + 1] == '\r' && raw[i + 2] == '\n')
            return i + 3;
    }
    return raw.size();
}

MimeMessage MimeMessage::parse(QByteArrayView raw, int depth) {
    GMimeRuntime::ensure();
    MimeMessage m;
    m.m_body = raw.sliced(bodyOffset(raw)).toByteArray();

    GPtr<GMimeStream> stream(g_mime_stream_mem_new_with_buffer(raw.data(), size_t(raw.size())));
    GPtr<GMimeParser> parser(g_mime_parser_new_with_stream(stream.get()));
    g_mime_parser_set_format(parser.get(), GMIME_FORMAT_MESSAGE);
    GPtr<GMimeMessage> message(g_mime_parser_construct_message(parser.get(), nullptr));
    if (!message) {
        m.m_root.rawBody = m.m_body;
        return m;
    }

    GMimeObject* top = g_mime_message_get_mime_part(message.get());
    std::vector<Line> lines;
    collectHeaders(GMIME_OBJECT(message.get()), lines);
    collectHeaders(top, lines);
    std::stable_sort(lines.begin(), lines.end(),
                     [](const Line& a, const Line& b) { return a.offset < b.offset; });
    // Should a header be listed by both objects, it is still one line.
    lines.erase(std::unique(lines.begin(), lines.end(),
                            [](const Line& a, const Line& b) {
                                return a.offset >= 0 && a.offset == b.offset && a.text == b.text;
                            }),
                lines.end());
    for (Line& l : lines)
        m.m_headerLines.append(std::move(l.text));

    if (top)
        m.m_root = build(top, 0, depth);
    return m;
}

QByteArray MimeMessage::header(QByteArrayView name) const {
    for (const QByteArray& line : m_headerLines) {
        const qsizetype colon = line.indexOf(':');
        if (colon == name.size() &&
            QByteArrayView(line).first(colon).compare(name, Qt::CaseInsensitive) == 0) {
            QByteArray v = line.mid(colon + 1);
            qsizetype skip = 0;
            while (skip < v.size() && (v[skip] == ' ' || v[skip] == '\t'))
                ++skip;
            return v.mid(skip);
        }
    }
    return {};
}

} // namespace mirel
