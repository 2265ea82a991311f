#pragma once

#include <tul-util-gui/filesystemmodel/remotefileinfogatherer.h>
#include <tul-util-gui/filesystemmodel/remotefileinfogathererhandler.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include <QSemaphore>
#include <QStringList>

/// A gatherer that records what is asked of it and serves only paths that begin with that of a
/// folder: an item-model tester fetches all that it can, up to the whole disk.
class TestGatherer : public RemoteFileInfoGatherer
{
    Q_OBJECT

public:
    explicit TestGatherer(const QString &folder, QObject *parent = nullptr);
    ~TestGatherer() override;

    using RemoteFileInfoGatherer::fetch;

    void removePath(const QString &path) override;
    void addPath(const QString &path) override;
    void fetchExtendedInformation(const QString &path, const QStringList &files) override;

    QStringList requests; ///< "path|names" of each
    QStringList unwatched;
    bool works = true; ///< serves requests at all; without, a test emits the signals itself
    QSemaphore added; ///< counts addPath()

private:
    const QString m_folder;
};

/// Gives the models made while it lives a TestGatherer each.
class TestGathererFactory : public RemoteFileInfoGathererHandler
{
public:
    explicit TestGathererFactory(const QString &folder);
    ~TestGathererFactory() override;

    RemoteFileInfoGatherer *createGatherer(QObject *model) override;

    /// That of the last model.
    TestGatherer *made() const { return m_made; }

private:
    const QString m_folder;
    TestGatherer *m_made = nullptr;
};
