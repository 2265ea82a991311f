#include <tul-util-gui/terminal/nativearguments_p.h>

void tul::setNativeArguments(QProcess *, const QString &) { }
