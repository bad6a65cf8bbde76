#pragma once
// What a message's stored bytes read as on screen. The store keeps every
// byte as received; only for display are encoded words (RFC 2047) in
// headers decoded and bodies read in the character set their part declares.
// Without a declaration, and for the declarations that mean it in practice
// (us-ascii, iso-8859-1), the bytes read as Windows-1252, as the rest of the
// system's text does.
#include <QByteArray>
#include <QString>

namespace mirel {

/// Decoding of stored header and body bytes for display.
class MailDisplayText {
  public:
    /// A Subject or From value with its encoded words decoded; bytes outside
    /// encoded words read as UTF-8 when they are valid UTF-8, else as
    /// Windows-1252.
    static QString decodeHeader(QByteArrayView value);
    /// The charset parameter of a Content-Type parameter text, lower case;
    /// "windows-1252" when there is none.
    static QByteArray charsetOf(QByteArrayView typeParameters);
    /// Body bytes read in the given charset; an unknown charset or bytes it
    /// cannot read fall back to Windows-1252.
    static QString decodeBody(QByteArrayView body, QByteArrayView charset);
};

} // namespace mirel
