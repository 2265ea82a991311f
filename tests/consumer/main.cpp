#include <tul-util-gui/mdatable/mdatable.h>

#include <QApplication>
#include <QTimer>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    MDATable table(1000000000000, 1000, nullptr, "table");
    table.show();
    QTimer::singleShot(0, &application, &QApplication::quit);
    return application.exec();
}
