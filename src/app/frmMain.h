#pragma once
#include <QWidget>

namespace mirel {

/// The main window; it lives for the whole run and owns every screen control.
class frmMain : public QWidget {
    Q_OBJECT
  public:
    explicit frmMain(QWidget* parent = nullptr);
};

} // namespace mirel
