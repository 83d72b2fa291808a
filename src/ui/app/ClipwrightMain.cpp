#include "ui/app/ClipwrightMain.h"

#include "core/app/BLLogCtrl.h"

#include <QApplication>
#include <QMainWindow>

int clipwrightMain(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Clipwright"));
    BLLogCtrl::debug(0, QString(99, QLatin1Char('*')));
    QMainWindow window;
    window.resize(1024, 768);
    window.show();
    return app.exec();
}
