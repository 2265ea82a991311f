#pragma once

#include <QApplication>
#include <QSize>

namespace tul
{

/// The smallest size of anything a user can grab. The toolkit deprecates it, but still keeps it for
/// applications that set it.
inline QSize globalStrut()
{
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    return QApplication::globalStrut();
    QT_WARNING_POP
}

} // namespace tul
