#pragma once
// One mail account is one text of "|"-separated fields, read by position:
//
//   0 marker + name   "* " for the default account, "  " for the others
//   1 POP3 server     host, or host:port
//   2 user name       POP3 log-in, and the SMTP log-in when field 5 is "1"
//   3 password        held in clear inside the record
//   4 delete flag     "1" = delete each message from the server once fetched
//   5 SMTP log-in     "1" = log in to the SMTP server with fields 2 and 3
//   6 SMTP server     host, or host:port
//   7 address         the account's own address
//   8 sender name     the display name in From
//
// Two forms exist on disk and both must read: a new account is its field 0
// followed by eight bars and nothing else, an edited one has all nine fields
// and a closing bar. Field n is what follows the n-th bar up to the next bar
// or the end, so a record with fewer bars simply has empty fields, and one
// with more ignores the extra. There is no escape: a "|" typed into a field
// shifts every field after it.
#include <QByteArray>

namespace mirel {

/// Field access and the few edits the account manager makes on one record.
class AccountRecord {
  public:
    enum Field {
        MarkerAndName = 0,
        Pop3Server = 1,
        UserName = 2,
        Password = 3,
        DeleteFromServer = 4,
        SmtpLogin = 5,
        SmtpServer = 6,
        Address = 7,
        SenderName = 8,
    };
    static constexpr int kFieldCount = 9;

    static inline const QByteArray kDefaultMarker = QByteArrayLiteral("* ");
    static inline const QByteArray kOtherMarker = QByteArrayLiteral("  ");

    /// What the manager's text boxes and check boxes hold for one account.
    struct Settings {
        QByteArray pop3Server, userName, password;
        bool deleteFromServer = false, smtpLogin = false;
        QByteArray smtpServer, address, senderName;
        bool operator==(const Settings&) const = default;
    };

    static QByteArray field(QByteArrayView record, int n);
    /// The default account's record begins with "*".
    static bool isDefault(QByteArrayView record);
    /// Field 0 without its two marker characters.
    static QByteArray name(QByteArrayView record);
    /// Only accounts with an address and a sender name can send.
    static bool isUsable(QByteArrayView record);

    /// A new account: marker, name and eight bars.
    static QByteArray fresh(QByteArrayView name, bool isDefault);
    /// The record with its two marker characters replaced.
    static QByteArray withMarker(QByteArrayView record, bool isDefault);

    /// The check boxes take their field's number: an empty or non-numeric
    /// field is unchecked.
    static Settings settings(QByteArrayView record);
    /// Field 0 kept, every other field from s, closed by a bar.
    static QByteArray edited(QByteArrayView record, const Settings& s);
};

} // namespace mirel
