#include "sizetext_p.h"

#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include <QLocale>

namespace tul
{

QString sizeText(qint64 bytes, const QLocale &locale)
{
    constexpr qint64 kilo = 1024;
    constexpr qint64 mega = kilo * 1024;
    constexpr qint64 giga = mega * 1024;
    constexpr qint64 tera = giga * 1024;

    QLocale plain(locale);
    plain.setNumberOptions(locale.numberOptions() | QLocale::OmitGroupSeparator);
    const auto inUnits = [&](qint64 unit, int decimals) {
        return plain.toString(static_cast<double>(bytes) / static_cast<double>(unit), 'f',
                              decimals);
    };
    if (bytes >= tera)
        return RemoteFileSystemModel::tr("%1 TB").arg(inUnits(tera, 3));
    if (bytes >= giga)
        return RemoteFileSystemModel::tr("%1 GB").arg(inUnits(giga, 2));
    if (bytes >= mega)
        return RemoteFileSystemModel::tr("%1 MB").arg(inUnits(mega, 1));
    if (bytes >= kilo)
        return RemoteFileSystemModel::tr("%1 KB").arg(plain.toString(bytes / kilo));
    return RemoteFileSystemModel::tr("%1 bytes").arg(plain.toString(bytes));
}

} // namespace tul
