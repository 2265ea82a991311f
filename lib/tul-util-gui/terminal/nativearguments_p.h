#pragma once

class QProcess;
class QString;

namespace tul
{

/// Appends `arguments` as they are to the command line that `process` is started with, which is
/// possible on Windows only; does nothing elsewhere.
void setNativeArguments(QProcess *process, const QString &arguments);

} // namespace tul
