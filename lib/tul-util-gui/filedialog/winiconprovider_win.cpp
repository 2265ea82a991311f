#include <tul-util-gui/filedialog/winiconprovider_p.h>

#include <QFileInfo>
#include <QPixmapCache>
#include <QtWin>

#include <windows.h>
// After windows.h, whose names they use.
#include <objbase.h>
#include <shellapi.h>

namespace
{

constexpr UINT commonFlags = SHGFI_ICON | SHGFI_SYSICONINDEX | SHGFI_ADDOVERLAYS
    | SHGFI_OVERLAYINDEX | SHGFI_USEFILEATTRIBUTES;
constexpr UINT smallFlags = commonFlags | SHGFI_SMALLICON | SHGFI_TYPENAME;
constexpr UINT largeFlags = commonFlags | SHGFI_LARGEICON;
static_assert(smallFlags == 0x4571 && largeFlags == 0x4170);

DWORD attributesOf(const QFileInfo &info)
{
    DWORD attributes = 0;
    if (info.isDir())
        attributes |= FILE_ATTRIBUTE_DIRECTORY;
    if (!info.isWritable())
        attributes |= FILE_ATTRIBUTE_READONLY;
    if (info.isHidden())
        attributes |= FILE_ATTRIBUTE_HIDDEN;
    return attributes == 0 ? FILE_ATTRIBUTE_NORMAL : attributes;
}

/// An icon of the shell, released when it is out of use.
class ShellIcon
{
public:
    ShellIcon(const QString &suffix, DWORD attributes, UINT flags)
        : m_found(SHGetFileInfoW(reinterpret_cast<const wchar_t *>(suffix.utf16()), attributes,
                                 &m_info, sizeof(m_info), flags)
                  != 0)
    {
    }
    ~ShellIcon()
    {
        if (m_info.hIcon)
            DestroyIcon(m_info.hIcon);
    }
    ShellIcon(const ShellIcon &) = delete;
    ShellIcon &operator=(const ShellIcon &) = delete;

    bool isFound() const { return m_found; }
    int index() const { return m_info.iIcon; }
    QPixmap pixmap() const { return m_info.hIcon ? QtWin::fromHICON(m_info.hIcon) : QPixmap(); }

private:
    SHFILEINFOW m_info = {};
    const bool m_found;
};

class WinIconProvider : public QFileIconProvider
{
public:
    using QFileIconProvider::icon;
    QIcon icon(const QFileInfo &info) const override;
};

/// Adds the pixmap of a key to an icon; false when there is none yet.
bool addCached(QIcon *icon, const QString &key)
{
    QPixmap pixmap;
    if (key.isEmpty() || !QPixmapCache::find(key, &pixmap))
        return false;
    icon->addPixmap(pixmap);
    return true;
}

bool addFromShell(QIcon *icon, const ShellIcon &shellIcon, const QString &key)
{
    const QPixmap pixmap = shellIcon.pixmap();
    if (pixmap.isNull())
        return false;
    icon->addPixmap(pixmap);
    if (!key.isEmpty())
        QPixmapCache::insert(key, pixmap);
    return true;
}

QString largeKey(const QString &key)
{
    return key.isEmpty() ? key : key + QLatin1Char('l');
}

QIcon WinIconProvider::icon(const QFileInfo &info) const
{
    QIcon result;
    const QString suffix = QLatin1Char('.') + info.suffix().toUpper();
    const bool plain = info.isFile() && !info.isExecutable() && !info.isSymLink();
    QString key = plain ? QLatin1String("qt_") + suffix : QString();
    if (addCached(&result, key)) {
        addCached(&result, largeKey(key));
        return result;
    }

    const DWORD attributes = attributesOf(info);
    const ShellIcon smallIcon(suffix, attributes, smallFlags);
    if (!smallIcon.isFound())
        return result;
    if (info.isDir() && !info.isRoot())
        key = QStringLiteral("qt_dir_%1").arg(smallIcon.index());
    if (!addCached(&result, key) && !addFromShell(&result, smallIcon, key))
        qWarning("QFileIconProviderPrivate::getWinIcon() no small icon found");

    if (addCached(&result, largeKey(key)))
        return result;
    const ShellIcon largeIcon(suffix, attributes, largeFlags);
    if (largeIcon.isFound() && !addFromShell(&result, largeIcon, largeKey(key)))
        qWarning("QFileIconProviderPrivate::getWinIcon() no large icon found");
    return result;
}

} // namespace

std::unique_ptr<QFileIconProvider> tul::createWinIconProvider()
{
    // Once in the GUI thread, which is the one that makes dialogs.
    static const HRESULT initialised = CoInitialize(nullptr);
    Q_UNUSED(initialised)
    return std::make_unique<WinIconProvider>();
}
