#pragma once

#include <QString>

class QLocale;

namespace tul
{

/// A number of bytes as people read it: "1023 bytes", "1 KB", "1.5 MB". Kilobytes are cut off, not
/// rounded. Without group separators, which would put one into "1,023 KB".
QString sizeText(qint64 bytes, const QLocale &locale);

} // namespace tul
