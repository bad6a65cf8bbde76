#include "app/frmMain.h"

#include <QApplication>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    mirel::frmMain window;
    window.show();
    return app.exec();
}
