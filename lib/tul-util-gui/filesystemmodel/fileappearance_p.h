#pragma once

#include <QHash>
#include <QIcon>
#include <QMimeDatabase>
#include <QString>

class QFileIconProvider;
class QFileInfo;
class RemoteFileInfoGatherer;
struct RemoteExtendedInformation;

namespace tul
{

/// The icon of a file that a handler serves: by its kind and name, from the pictures that the
/// provider has of kinds.
QIcon servedIcon(const QFileIconProvider &provider, const QFileInfo &info);

} // namespace tul

/// Makes the type text and the icon of files at little cost.
///
/// A provider of the host is asked for each file. For the toolkit's own, files of a suffix share
/// their text, and files of a type that the name tells share their icon. It would open the other
/// files to look for their type: those of this machine only, never a served one.
class FileAppearance
{
public:
    explicit FileAppearance(const RemoteFileInfoGatherer &gatherer)
        : m_gatherer(gatherer)
    {
    }

    /// Fills in `displayType` and `icon`.
    void fill(RemoteExtendedInformation &record);

    /// Whether the provider is the toolkit's own, whose answers depend on few things.
    bool isShared();

    /// The type text alone, for many files at once; only if it is shared.
    QString typeText(const RemoteExtendedInformation &record);

    /// Forgets what is shared.
    void clear();

private:
    QIcon localIcon(const RemoteExtendedInformation &record);

    const RemoteFileInfoGatherer &m_gatherer;
    const QFileIconProvider *m_provider = nullptr; // whose answers are shared
    QMimeDatabase m_types;
    QHash<QString, QString> m_typeTexts; // by kind and suffix
    QHash<QString, QIcon> m_icons; // by kind and type
};
