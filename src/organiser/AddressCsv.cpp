#include "organiser/AddressCsv.h"

#include "platform/Cp1252.h"
#include "settings/CommaList.h"

#include <QStringDecoder>
#include <algorithm>
#include <cctype>
#include <climits>

namespace mirel {
namespace {

// What the column names of other programs' exports read as, for the
// captions of the bundled theme (all in the compared form: lower case,
// letters and digits only). Earlier names win; the name field takes a
// single-name column first and only then the first-name column.
struct Synonyms {
    const char* caption;
    std::array<const char*, 8> names; // unused places stay null
};
const Synonyms kSynonyms[] = {
    {"name", {"displayname", "fullname", "formattedname", "contactname", "firstname", "givenname"}},
    {"company", {"organization", "organisation", "companyname", "org", "businessname"}},
    {"street",
     {"streetaddress", "homestreet", "homeaddress", "address", "address1", "street1",
      "businessstreet", "workaddress"}},
    {"postcode",
     {"postalcode", "zip", "zipcode", "homepostalcode", "homezipcode", "businesspostalcode"}},
    {"city", {"town", "locality", "homecity", "businesscity", "workcity"}},
    {"country", {"countryregion", "homecountry", "homecountryregion", "businesscountry"}},
    {"birthday", {"birthdate", "dateofbirth", "dob"}},
    {"group", {"groups", "groupmembership", "category", "categories"}},
    {"phone",
     {"homephone", "telephone", "phonenumber", "primaryphone", "tel", "phone1value", "phone1"}},
    {"mobile", {"mobilephone", "cell", "cellphone", "mobilenumber", "cellular"}},
    {"workphone", {"businessphone", "officephone", "worktelephone", "companyphone"}},
    {"fax", {"faxnumber", "homefax", "businessfax", "workfax"}},
    {"email",
     {"emailaddress", "primaryemail", "email1", "emailaddress1", "email1value", "mail",
      "homeemail"}},
    {"email2",
     {"secondemail", "secondaryemail", "emailaddress2", "email2address", "email2value",
      "workemail"}},
    {"website", {"webpage", "homepage", "url", "web", "personalwebpage", "website1value"}},
    {"position", {"jobtitle", "title", "role"}},
    {"notes", {"note", "comments", "comment", "description"}},
};

QByteArray compareForm(QByteArrayView text) {
    QByteArray out;
    for (char c : text) {
        const auto u = static_cast<unsigned char>(c);
        if (std::isalnum(u))
            out += char(std::tolower(u));
        else if (u >= 0x80)
            out += c; // accented letters count; the code page has no case rule here
    }
    return out;
}

QByteArray stripQuotes(QByteArray v) {
    if (v.size() >= 2 && v.front() == '"' && v.back() == '"') {
        v = v.mid(1, v.size() - 2);
        v.replace("\"\"", "\"");
    }
    return v;
}

// Whether a line leaves its quotes open at its end, opened where a value
// begins (so it is a quoted value that goes on, not a stray quote).
bool opensQuotedValue(QByteArrayView line, char sep) {
    bool inside = false;
    bool openedAtValueStart = false;
    for (qsizetype i = 0; i < line.size(); ++i) {
        if (line[i] != '"')
            continue;
        inside = !inside;
        if (inside)
            openedAtValueStart = i == 0 || line[i - 1] == sep || line[i - 1] == '"';
    }
    return inside && openedAtValueStart;
}

bool isBlank(QByteArrayView line) {
    for (char c : line)
        if (c != ' ' && c != '\t')
            return false;
    return true;
}

} // namespace

QByteArray AddressCsv::toWindows1252(const QByteArray& bytes) {
    auto convert = [](QStringDecoder&& decoder, QByteArrayView in) {
        return Cp1252::fromUnicode(QString(decoder(in)));
    };
    if (bytes.startsWith("\xEF\xBB\xBF"))
        return convert(QStringDecoder(QStringDecoder::Utf8), QByteArrayView(bytes).sliced(3));
    if (bytes.startsWith("\xFF\xFE"))
        return convert(QStringDecoder(QStringDecoder::Utf16LE), QByteArrayView(bytes).sliced(2));
    if (bytes.startsWith("\xFE\xFF"))
        return convert(QStringDecoder(QStringDecoder::Utf16BE), QByteArrayView(bytes).sliced(2));
    const bool ascii =
        std::all_of(bytes.begin(), bytes.end(), [](char c) { return (unsigned char)c < 0x80; });
    if (ascii)
        return bytes;
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString text = utf8(bytes);
    return utf8.hasError() ? bytes : Cp1252::fromUnicode(text);
}

AddressCsv AddressCsv::parse(const QByteArray& fileBytes) {
    AddressCsv csv;
    QList<QByteArray> lines = toWindows1252(fileBytes).split('\n');
    for (QByteArray& l : lines)
        if (l.endsWith('\r'))
            l.chop(1);
    if (lines.isEmpty())
        return csv;
    csv.header = lines.front();
    csv.separator = csv.header.contains(';') ? ';' : ',';
    for (qsizetype i = 1; i < lines.size(); ++i) {
        QByteArray record = lines[i];
        if (opensQuotedValue(record, csv.separator)) {
            // Find the line that closes the value; parity of quotes decides.
            bool open = true;
            qsizetype end = i;
            for (qsizetype j = i + 1; open && j < lines.size() && j <= i + kMaxSpan; ++j) {
                open = (lines[j].count('"') % 2 == 0) == open;
                end = j;
            }
            if (!open) {
                for (qsizetype j = i + 1; j <= end; ++j)
                    record += "\r\n" + lines[j];
                i = end;
            }
        }
        if (isBlank(record))
            continue;
        if (record.contains('\0') || record.size() > kMaxRecord)
            ++csv.refused;
        else
            csv.records.append(record);
    }
    return csv;
}

QList<QByteArray> AddressCsv::values(QByteArrayView record, char separator) {
    QList<QByteArray> out;
    QByteArray current;
    bool inside = false;
    for (char c : record) {
        if (c == '"')
            inside = !inside;
        if (c == separator && !inside) {
            out.append(stripQuotes(current));
            current.clear();
        } else {
            current += c;
        }
    }
    out.append(stripQuotes(current));
    return out;
}

QByteArray formatAssignment(const ColumnAssignment& a) {
    QByteArray out;
    for (int k = 0; k < 17; ++k)
        out += QByteArray::number(k) + '=' + QByteArray::number(a[k]) + ';';
    return out;
}

ColumnAssignment parseAssignment(QByteArrayView text) {
    ColumnAssignment a{};
    qsizetype from = 0;
    for (int k = 0; k < 17; ++k) {
        const qsizetype eq = text.indexOf('=', from);
        if (eq < 0)
            break;
        const qsizetype semi = text.indexOf(';', eq);
        const QByteArrayView number = text.sliced(eq + 1, (semi < 0 ? text.size() : semi) - eq - 1);
        a[k] = int(std::clamp(leadingNumber(number), 0L, long(INT_MAX)));
        from = eq + 1;
    }
    return a;
}

ColumnAssignment preselectColumns(const QList<QByteArray>& columns, const FieldCaptions& captions) {
    QList<QByteArray> names;
    for (const QByteArray& c : columns)
        names.append(compareForm(c));
    auto columnOf = [&names](const QByteArray& name) {
        const qsizetype i = name.isEmpty() ? -1 : names.indexOf(name);
        return int(i + 1);
    };
    ColumnAssignment a{};
    for (int k = 0; k < 17; ++k) {
        const QByteArray caption = compareForm(captions[k]);
        a[k] = columnOf(caption);
        for (const Synonyms& s : kSynonyms) {
            if (a[k] != 0 || caption != s.caption)
                continue;
            for (const char* name : s.names)
                if (name && a[k] == 0)
                    a[k] = columnOf(QByteArray(name));
        }
    }
    return a;
}

std::optional<Contact> contactFromValues(const QList<QByteArray>& values,
                                         const ColumnAssignment& assignment) {
    Contact c;
    bool any = false;
    for (int k = 0; k < 17; ++k) {
        const int column = assignment[k];
        QByteArray v = column >= 1 && column <= values.size() ? values[column - 1] : QByteArray();
        any = any || !v.isEmpty();
        v.replace("\r\n", "\n");
        if (k < 16)
            c.fields[k] = v.replace('\n', ' ').replace('\r', ' ');
        else
            c.notes = v.replace("\n", "\r\n");
    }
    if (!any)
        return std::nullopt;
    return c;
}

} // namespace mirel
