#pragma once
// What an organiser editor showed when it last matched its file: loaded,
// saved, emptied or cancelled. Anything typed or stepped since then is an
// unsaved change that leaving the screen must not drop.
#include <QByteArray>
#include <QString>

namespace mirel {

class SkinHost;

/// The editor state of the shown screen, remembered and compared.
class UnsavedEdits {
public:
    /// The command that saves the editor of a screen; empty for screens
    /// without one.
    static QByteArray saveCommand(const QByteArray& screen);
    /// Everything the user can change in the shown screen's editor.
    static QString capture(const SkinHost& host);

    void remember(const SkinHost& host);
    bool changed(const SkinHost& host) const;

private:
    QByteArray m_screen;
    QString m_state;
};

} // namespace mirel
