#include <support/testgatherer.h>

TestGatherer::TestGatherer(const QString &folder, QObject *parent)
    : RemoteFileInfoGatherer(parent)
    , m_folder(folder)
{
}

TestGatherer::~TestGatherer()
{
    stop();
}

void TestGatherer::removePath(const QString &path)
{
    unwatched.append(path);
    RemoteFileInfoGatherer::removePath(path);
}

void TestGatherer::addPath(const QString &path)
{
    added.release();
    RemoteFileInfoGatherer::addPath(path);
}

void TestGatherer::fetchExtendedInformation(const QString &path, const QStringList &files)
{
    requests.append(path + QLatin1Char('|') + files.join(QLatin1Char(',')));
    if (works && path.startsWith(m_folder))
        RemoteFileInfoGatherer::fetchExtendedInformation(path, files);
}

TestGathererFactory::TestGathererFactory(const QString &folder)
    : m_folder(folder)
{
    RemoteFileSystemModel::setRemoteFileInfoGathererHandler(this);
}

TestGathererFactory::~TestGathererFactory()
{
    RemoteFileSystemModel::setRemoteFileInfoGathererHandler(nullptr);
}

RemoteFileInfoGatherer *TestGathererFactory::createGatherer(QObject *model)
{
    m_made = new TestGatherer(m_folder, model);
    return m_made;
}
