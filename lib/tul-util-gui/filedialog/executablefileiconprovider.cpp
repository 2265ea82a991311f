#include <tul-util-gui/filedialog/executablefileiconprovider_p.h>
#include <tul-util-gui/filesystemmodel/fileappearance_p.h>

#include <QFileInfo>

// A macro that must stand outside of namespaces. Without the call a program that links the objects
// from an archive would lose the pictures.
static void initialiseResources()
{
    Q_INIT_RESOURCE(filedialog);
}

namespace
{

QIcon ownIcon()
{
    QIcon icon;
    for (const int size : {16, 22, 32, 48, 64})
        icon.addFile(QStringLiteral(":/fileDialog/%1x%1/exec.png").arg(size), QSize(size, size));
    return icon;
}

} // namespace

namespace FileDialog
{

ExecutableFileIconProvider::ExecutableFileIconProvider()
{
    initialiseResources();
    m_executableIcon = QIcon::fromTheme(QStringLiteral("application-x-executable"), ownIcon());
}

QIcon ExecutableFileIconProvider::icon(const QFileInfo &info) const
{
    if (!m_executableIcon.isNull() && !info.isDir() && info.isExecutable())
        return m_executableIcon;
    return info.isNativePath() ? QFileIconProvider::icon(info) : tul::servedIcon(*this, info);
}

} // namespace FileDialog
