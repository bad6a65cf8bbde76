#pragma once
// The paragraph-format pop-up of the compose window. Its colours and font
// come from section "EMAILMENU" of terminal.skn (keys "BackColor",
// "ForeColor", "HighColor", "Font"), so it matches the theme's dialogs.
#include <QMenu>
#include <QStringList>

namespace mirel {

class IniHelpers;

/// frmMenu: the formats the editor can apply, the one at the caret checked.
class frmMenu : public QMenu {
    Q_OBJECT
public:
    static inline const QByteArray kSection = QByteArrayLiteral("EMAILMENU");
    /// The captions, in menu order.
    static const QStringList& formats();

    frmMenu(IniHelpers& ini, const QString& skinFile, QWidget* parent);

    /// Checks the item captioned current; with enabled false every item is
    /// disabled and none checked.
    void showState(const QString& current, bool enabled);

Q_SIGNALS:
    void formatChosen(const QString& caption);
};

} // namespace mirel
