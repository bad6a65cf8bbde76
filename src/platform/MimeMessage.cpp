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

// The message as parsed, for parts that may borrow its bytes.
struct Source {
    QByteArrayView raw;
    const GByteArray* buffer = nullptr; // the array GMime reads raw through; null: copy every body
};

QByteArray streamBytes(GMimeStream* stream, const Source& source) {
    // A part of a message parsed from memory is a window on the parser's
    // buffer: its bytes are copied out once rather than streamed through a
    // second buffer, or not at all when the caller's own bytes may be lent.
    if (const GByteArray* buffer =
            GMIME_IS_STREAM_MEM(stream) ? GMIME_STREAM_MEM(stream)->buffer : nullptr) {
        const gint64 start = stream->bound_start;
        const gint64 end = stream->bound_end < 0 ? gint64(buffer->len)
                                                 : std::min(stream->bound_end, gint64(buffer->len));
        if (start >= 0 && start <= end) {
            if (buffer == source.buffer && end <= source.raw.size())
                return QByteArray::fromRawData(source.raw.data() + start, qsizetype(end - start));
            return QByteArray(reinterpret_cast<const char*>(buffer->data) + start,
                              qsizetype(end - start));
        }
    }
    GPtr<GMimeStream> mem(g_mime_stream_mem_new());
    g_mime_stream_reset(stream);
    g_mime_stream_write_to_stream(stream, mem.get());
    GByteArray* bytes = g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(mem.get()));
    return QByteArray(reinterpret_cast<const char*>(bytes->data), qsizetype(bytes->len));
}

// GMime writes a container out again rather than handing back its bytes;
// it is written with the line ends the message itself uses.
QByteArray contentAsTransmitted(GMimeObject* obj, GMimeFormatOptions* format,
                                const Source& source) {
    if (GMIME_IS_PART(obj)) {
        GMimeDataWrapper* content = g_mime_part_get_content(GMIME_PART(obj));
        GMimeStream* stream = content ? g_mime_data_wrapper_get_stream(content) : nullptr;
        return stream ? streamBytes(stream, source) : QByteArray();
    }
    GPtr<GMimeStream> mem(g_mime_stream_mem_new());
    g_mime_object_write_content_to_stream(obj, format, mem.get());
    GByteArray* bytes = g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(mem.get()));
    return QByteArray(reinterpret_cast<const char*>(bytes->data), qsizetype(bytes->len));
}

// The media type as written. A value that is not "type/subtype" reads as
// text/plain, as MIME prescribes for a syntax error, where GMime would
// take it for application/octet-stream.
bool parseMediaType(const QByteArray& contentType, MimeEntity& e) {
    const qsizetype semi = contentType.indexOf(';');
    const QByteArray value = (semi < 0 ? contentType : contentType.first(semi)).trimmed();
    const qsizetype slash = value.indexOf('/');
    const QByteArray type = value.left(slash).trimmed().toLower();
    const QByteArray subtype = value.mid(slash + 1).trimmed().toLower();
    if (slash <= 0 || type.isEmpty() || subtype.isEmpty() || type.contains(' ') ||
        subtype.contains(' ')) {
        e.type = QByteArrayLiteral("text");
        e.subtype = QByteArrayLiteral("plain");
        return false;
    }
    e.type = type;
    e.subtype = subtype;
    return true;
}

QByteArray lowerTrimmed(const char* text) {
    return QByteArray(text ? text : "").trimmed().toLower();
}

// GMime joins RFC 2231 continuations and decodes both RFC 2231 and RFC 2047
// forms of a parameter into UTF-8.
void readNaming(GMimeObject* obj, MimeEntity& e) {
    e.charset = lowerTrimmed(g_mime_object_get_content_type_parameter(obj, "charset"));
    QByteArray name = QByteArray(g_mime_object_get_content_type_parameter(obj, "name")).trimmed();
    if (GMimeContentDisposition* d = g_mime_object_get_content_disposition(obj)) {
        e.disposition = lowerTrimmed(g_mime_content_disposition_get_disposition(d));
        if (name.isEmpty())
            name = QByteArray(g_mime_content_disposition_get_parameter(d, "filename")).trimmed();
    }
    e.fileName = name;
}

MimeEntity build(GMimeObject* obj, int level, int depth, GMimeFormatOptions* format,
                 const Source& source) {
    MimeEntity e;
    const QByteArray contentType = rawHeader(obj, "Content-Type");
    if (contentType.isEmpty()) {
        // No header: the default of the context (message/rfc822 inside a
        // digest), which GMime knows.
        if (GMimeContentType* ct = g_mime_object_get_content_type(obj)) {
            if (const char* t = g_mime_content_type_get_media_type(ct))
                e.type = QByteArray(t).toLower();
            if (const char* s = g_mime_content_type_get_media_subtype(ct))
                e.subtype = QByteArray(s).toLower();
        }
    } else {
        parseMediaType(contentType, e);
    }
    if (const qsizetype semi = contentType.indexOf(';'); semi >= 0)
        e.typeParameters = contentType.mid(semi + 1).trimmed();
    e.transferEncoding = rawHeader(obj, "Content-Transfer-Encoding");
    readNaming(obj, e);

    if (GMIME_IS_MULTIPART(obj) && level < depth) {
        GMimeMultipart* mp = GMIME_MULTIPART(obj);
        const int count = g_mime_multipart_get_count(mp);
        e.parts.reserve(size_t(std::max(count, 0)));
        for (int i = 0; i < count; ++i)
            e.parts.push_back(
                build(g_mime_multipart_get_part(mp, i), level + 1, depth, format, source));
    }
    // A container whose boundary never shows has no parts; it is then
    // read as the single part it is, with its text as transmitted.
    if (e.parts.empty())
        e.rawBody = contentAsTransmitted(obj, format, source);
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
        // "Name:" and the unfolded value, made in one piece: a session reads
        // tens of thousands of header lines.
        const QByteArrayView name(g_mime_header_get_name(h));
        const char* value = g_mime_header_get_raw_value(h);
        const QByteArrayView raw(value ? value : "");
        QByteArray line(name.size() + 1 + raw.size(), Qt::Uninitialized);
        char* o = std::copy(name.begin(), name.end(), line.data());
        *o++ = ':';
        o = std::remove_copy_if(raw.begin(), raw.end(), o,
                                [](char c) { return c == '\r' || c == '\n'; });
        line.truncate(o - line.constData());
        out.push_back({g_mime_header_get_offset(h), std::move(line)});
    }
}

} // namespace

QByteArray MimeEntity::decodedBody() const {
    return TransferDecoder::decode(rawBody, TransferDecoder::fromName(transferEncoding));
}

qsizetype MimeMessage::bodyOffset(QByteArrayView raw) {
    // The header block ends at a blank line, which belongs to neither part,
    // or at the first line that cannot be a header line, which is the
    // first line of the body.
    qsizetype pos = 0;
    while (pos < raw.size()) {
        qsizetype end = raw.indexOf('\n', pos);
        end = end < 0 ? raw.size() : end + 1;
        QByteArrayView line = raw.sliced(pos, end - pos);
        if (line == "\n" || line == "\r\n")
            return end;
        const bool continuation = pos > 0 && (line[0] == ' ' || line[0] == '\t');
        const bool envelope = pos == 0 && line.startsWith("From ");
        if (!continuation && !envelope) {
            qsizetype i = 0;
            while (i < line.size() && line[i] != ':' && uchar(line[i]) > 32 && uchar(line[i]) < 127)
                ++i;
            if (i >= line.size() || line[i] != ':')
                return pos;
        }
        pos = end;
    }
    return raw.size();
}

MimeMessage MimeMessage::parse(QByteArrayView raw, int depth, Bytes bytes) {
    GMimeRuntime::ensure();
    MimeMessage m;
    const QByteArrayView body = raw.sliced(bodyOffset(raw));
    const bool borrowed = bytes == Bytes::Borrowed;
    // The body as fetched, which a part without parts is; borrowed, it is
    // only made when needed.
    const QByteArray wholeBody =
        borrowed ? QByteArray::fromRawData(body.data(), body.size()) : body.toByteArray();
    if (!borrowed)
        m.m_body = wholeBody;

    // GMime reads the message where it lies rather than from a copy of its
    // own: the stream is lent an array over raw and never writes to it,
    // and every GMime object is gone before the array is let go (declared
    // first, it goes last).
    struct Lent {
        GByteArray* array = nullptr;
        ~Lent() {
            if (array)
                g_byte_array_free(array, FALSE); // the bytes stay the caller's
        }
    } lent;
    GMimeStream* memory = nullptr;
    if (!raw.isEmpty()) {
        lent.array = g_byte_array_new_take(reinterpret_cast<guint8*>(const_cast<char*>(raw.data())),
                                           size_t(raw.size()));
        memory = g_mime_stream_mem_new_with_byte_array(lent.array);
        g_mime_stream_mem_set_owner(GMIME_STREAM_MEM(memory), FALSE);
    } else {
        memory = g_mime_stream_mem_new_with_buffer(raw.data(), size_t(raw.size()));
    }
    GPtr<GMimeStream> stream(memory);
    GPtr<GMimeParser> parser(g_mime_parser_new_with_stream(stream.get()));
    g_mime_parser_set_format(parser.get(), GMIME_FORMAT_MESSAGE);
    GPtr<GMimeMessage> message(g_mime_parser_construct_message(parser.get(), nullptr));
    if (!message) {
        m.m_root.rawBody = wholeBody;
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

    if (top) {
        GMimeFormatOptions* format = g_mime_format_options_new();
        const qsizetype lf = raw.indexOf('\n');
        g_mime_format_options_set_newline_format(format, lf > 0 && raw[lf - 1] == '\r'
                                                             ? GMIME_NEWLINE_FORMAT_DOS
                                                             : GMIME_NEWLINE_FORMAT_UNIX);
        const Source source{raw, borrowed ? GMIME_STREAM_MEM(stream.get())->buffer : nullptr};
        m.m_root = build(top, 0, depth, format, source);
        g_mime_format_options_free(format);
    }
    // GMime renders a container without parts with line ends of its own;
    // at the top the body as fetched is at hand, byte for byte.
    if (m.m_root.parts.empty())
        m.m_root.rawBody = wholeBody;
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
