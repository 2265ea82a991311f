#include <tul-util-gui/terminal/nativearguments_p.h>

#include <QProcess>

void tul::setNativeArguments(QProcess *process, const QString &arguments)
{
    process->setNativeArguments(arguments);
}
