#pragma once
// A theme is data a user may download, yet its buttons may name programs.
// Before a theme starts a program for the first time the user is asked; a
// "yes" is kept in "programs.ini" in the program folder, one section per
// theme folder, one key per command (a digest of the command line, so any
// command fits a key). A "no" holds until the program ends: the button
// stays quiet instead of asking on every click, and a restart asks again.
#include <QByteArray>
#include <QString>

namespace mirel {

/// The remembered answers for one theme.
class ProgramConsent {
public:
    enum class Answer { Unknown, Allowed, Refused };

    ProgramConsent(QString file, QString theme);

    Answer answer(QByteArrayView command) const;
    /// Returns false when a "yes" could not be written (it still holds for
    /// this run).
    bool remember(QByteArrayView command, bool allowed) const;

    /// Whether a command's target needs asking: anything but a web or mail
    /// address may run code.
    static bool needsAsking(const QString& target, bool isAddress);

private:
    QByteArray section() const;
    QByteArray key(QByteArrayView command) const;

    QString m_file;
    QString m_theme;
};

} // namespace mirel
