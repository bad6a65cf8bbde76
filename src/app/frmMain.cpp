#include "app/frmMain.h"

namespace mirel {

frmMain::frmMain(QWidget* parent) : QWidget(parent) {
    setWindowTitle(QStringLiteral("TORVEX Terminal - Mirel"));
    resize(1024, 600);
}

} // namespace mirel
