#include "fileappearance_p.h"

#include <tul-util-gui/filesystemmodel/remoteextendedinformation.h>
#include <tul-util-gui/filesystemmodel/remotefileinfogatherer.h>

#include <QFileIconProvider>
#include <QFileInfo>
#include <QMimeType>

#include <typeinfo>

namespace
{

const int mostShared = 1000; // suffixes; beyond that they are no types any more

QString withKind(const RemoteExtendedInformation &record, const QString &text)
{
    return text + QChar(record.type()) + QChar(record.isSymLink() ? 1 : 0);
}

} // namespace

namespace tul
{

QIcon servedIcon(const QFileIconProvider &provider, const QFileInfo &info)
{
    // By design: the provider is not asked about the file. It would open it to look for its type,
    // over the network and on the GUI thread, once for each row shown.
    if (info.isRoot())
        return provider.icon(QFileIconProvider::Drive);
    if (info.isDir())
        return provider.icon(QFileIconProvider::Folder);
    const QMimeType type
        = QMimeDatabase().mimeTypeForFile(info.fileName(), QMimeDatabase::MatchExtension);
    const QIcon icon = QIcon::fromTheme(type.iconName());
    if (!icon.isNull())
        return icon;
    return QIcon::fromTheme(type.genericIconName(), provider.icon(QFileIconProvider::File));
}

} // namespace tul

void FileAppearance::fill(RemoteExtendedInformation &record)
{
    if (!isShared()) {
        record = m_gatherer.getInfo(record.mFileInfo);
        return;
    }
    record.displayType = typeText(record);
    record.icon = record.mFileInfo.isNativePath() ? localIcon(record)
                                                  : tul::servedIcon(*m_provider, record.mFileInfo);
}

void FileAppearance::clear()
{
    m_typeTexts.clear();
    m_icons.clear();
}

bool FileAppearance::isShared()
{
    const QFileIconProvider *const provider = m_gatherer.iconProvider();
    if (m_provider != provider) {
        m_provider = provider;
        clear();
    }
    return provider && typeid(*provider) == typeid(QFileIconProvider);
}

QString FileAppearance::typeText(const RemoteExtendedInformation &record)
{
    if (record.type() != RemoteExtendedInformation::File)
        return m_provider->type(record.mFileInfo);
    if (m_typeTexts.size() >= mostShared)
        m_typeTexts.clear();
    QString &text = m_typeTexts[withKind(record, record.mFileInfo.suffix())];
    if (text.isNull())
        text = m_provider->type(record.mFileInfo);
    return text;
}

QIcon FileAppearance::localIcon(const RemoteExtendedInformation &record)
{
    if (record.type() != RemoteExtendedInformation::File)
        return m_provider->icon(record.mFileInfo);
    const QList<QMimeType> types = m_types.mimeTypesForFileName(record.mFileInfo.fileName());
    if (types.size() != 1)
        return m_provider->icon(record.mFileInfo);
    const QString key = withKind(record, types.first().name());
    const auto shared = m_icons.constFind(key);
    if (shared != m_icons.constEnd())
        return *shared;
    const QIcon icon = m_provider->icon(record.mFileInfo);
    m_icons.insert(key, icon);
    return icon;
}
