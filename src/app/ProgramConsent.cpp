#include "app/ProgramConsent.h"

#include "platform/IniDocument.h"
#include "platform/IniFile.h"

#include <QCryptographicHash>
#include <QSet>
#include <QUrl>

namespace mirel {
namespace {

// Answers of this run, by file + section + key.
QSet<QByteArray>& sessionAnswers(bool allowed) {
    static QSet<QByteArray> yes, no;
    return allowed ? yes : no;
}

} // namespace

ProgramConsent::ProgramConsent(QString file, QString theme)
    : m_file(std::move(file)), m_theme(std::move(theme)) {}

QByteArray ProgramConsent::section() const {
    const QByteArray name = m_theme.toUtf8();
    if (IniDocument::canWrite(name, "k", "1"))
        return name;
    return "theme " + QCryptographicHash::hash(name, QCryptographicHash::Sha256).toHex().left(16);
}

QByteArray ProgramConsent::key(QByteArrayView command) const {
    return QCryptographicHash::hash(command, QCryptographicHash::Sha256).toHex().left(32);
}

ProgramConsent::Answer ProgramConsent::answer(QByteArrayView command) const {
    const QByteArray id = m_file.toUtf8() + '\n' + section() + '\n' + key(command);
    if (sessionAnswers(false).contains(id))
        return Answer::Refused;
    if (sessionAnswers(true).contains(id))
        return Answer::Allowed;
    QByteArray value;
    if (IniFile::read(m_file, section(), key(command), value) && value.trimmed() == "1")
        return Answer::Allowed;
    return Answer::Unknown;
}

bool ProgramConsent::remember(QByteArrayView command, bool allowed) const {
    sessionAnswers(allowed).insert(m_file.toUtf8() + '\n' + section() + '\n' + key(command));
    return !allowed || bool(IniFile::write(m_file, section(), key(command), "1"));
}

bool ProgramConsent::needsAsking(const QString& target, bool isAddress) {
    if (!isAddress)
        return true;
    const QString scheme = QUrl(target).scheme().toLower();
    return scheme != QLatin1String("http") && scheme != QLatin1String("https") &&
           scheme != QLatin1String("mailto");
}

} // namespace mirel
