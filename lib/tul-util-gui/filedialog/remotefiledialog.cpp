#include <tul-util-gui/filedialog/dialogpaths_p.h>
#include <tul-util-gui/filedialog/remotefiledialog.h>
#include <tul-util-gui/filedialog/remotefiledialogbase_p.h>
#include <tul-util-gui/filedialog/remoteproxymodel.h>
#include <tul-util-gui/filedialog/remotesettings_p.h>
#include <tul-util-gui/filedialog/scopeddialog_p.h>
#include <tul-util-gui/filedialog/winiconprovider_p.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include <QComboBox>
#include <QDir>
#include <QFileIconProvider>

#include <algorithm>

namespace
{

RemoteFileDialog *s_instance = nullptr;

/// Whether a place is in the list, in just this spelling.
bool hasPlace(const QList<QUrl> &places, const QString &path)
{
    return std::any_of(places.cbegin(), places.cend(),
                       [&](const QUrl &place) { return place.toLocalFile() == path; });
}

QFileDialog::FileMode directoryMode(QFileDialog::Options options)
{
    // The option alone, which the toolkit recommends, would leave the mode to the order of calls.
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    return options.testFlag(QFileDialog::ShowDirsOnly) ? QFileDialog::DirectoryOnly
                                                       : QFileDialog::Directory;
    QT_WARNING_POP
}

/// What a static function shows.
struct Request {
    QWidget *parent;
    const QString &caption;
    const QString &directory;
    const QString &filter;
    QString *selectedFilter;
    QFileDialog::Options options;
    RemoteFileDialog::FileSystemLocation location;
};

QStringList chosenFiles(const Request &request, QFileDialog::FileMode fileMode,
                        QFileDialog::AcceptMode acceptMode = QFileDialog::AcceptOpen)
{
    const tul::ScopedDialog<RemoteFileDialog> dialog(
        request.parent, request.caption, request.directory, request.filter, request.location);
    dialog->setFileMode(fileMode);
    dialog->setOptions(request.options);
    if (acceptMode != QFileDialog::AcceptOpen)
        dialog->setAcceptMode(acceptMode);
    if (request.selectedFilter)
        dialog->selectNameFilter(*request.selectedFilter);
    if (!dialog.accepted())
        return {};
    if (request.selectedFilter)
        *request.selectedFilter = dialog->selectedFilter();
    return dialog->selectedFiles();
}

} // namespace

QString RemoteFileDialog::remotePrefix()
{
    return tul::lockedCopy(&tul::RemoteSettings::prefix);
}

void RemoteFileDialog::setRemotePrefix(const QString &prefix)
{
    tul::lockedAssign(&tul::RemoteSettings::prefix, prefix);
}

QString RemoteFileDialog::remoteHomeDirectory()
{
    return tul::lockedCopy(&tul::RemoteSettings::homeDirectory);
}

void RemoteFileDialog::setRemoteHomeDirectory(const QString &directory)
{
    tul::lockedAssign(&tul::RemoteSettings::homeDirectory, directory);
}

QString RemoteFileDialog::defaultWorkingDirectory()
{
    return tul::lockedCopy(&tul::RemoteSettings::defaultWorkingDirectory);
}

void RemoteFileDialog::setDefaultWorkingDirectory(const QString &directory)
{
    tul::lockedAssign(&tul::RemoteSettings::defaultWorkingDirectory, directory);
}

RemoteFileDialog::Hook RemoteFileDialog::hook()
{
    return tul::lockedCopy(&tul::RemoteSettings::hook);
}

void RemoteFileDialog::setHook(Hook hook)
{
    tul::lockedAssign(&tul::RemoteSettings::hook, hook);
}

RemoteFileDialog *RemoteFileDialog::instance()
{
    return s_instance;
}

RemoteFileDialog::RemoteFileDialog(QWidget *parent, Qt::WindowFlags flags)
    : RemoteFileDialogBase(parent, flags)
    , m_location(RemoteLocation)
{
    init();
    setLocation(RemoteLocation);
    navigation().start();
}

RemoteFileDialog::RemoteFileDialog(QWidget *parent, const QString &caption,
                                   const QString &directory, const QString &filter,
                                   FileSystemLocation location)
    : RemoteFileDialogBase(parent, caption, filter,
                           Beginning{location == RemoteLocation
                                         ? tul::addPrefix(directory, tul::remoteSettings().prefix)
                                         : directory})
    , m_location(location)
{
    init();
    setLocation(location);
    // It is shown already, unless the host's hook or the location has led elsewhere.
    if (!directory.isEmpty())
        setDirectory(mungePath(directory));
    navigation().start(); // the first directory may have been of the other side
}

void RemoteFileDialog::init()
{
    s_instance = this;
    auto *const proxy = new RemoteProxyModel(this);
    proxy->setLocation(m_location);
    setProxyModel(proxy);

    m_lookInCombo = findChild<QComboBox *>();
    navigation().lookInPath = [this](const QString &text) { return lookInPath(text); };
    connect(m_lookInCombo, QOverload<int>::of(&QComboBox::activated), this,
            &RemoteFileDialog::delayedCheckDirectory);
    connect(m_lookInCombo, &QComboBox::editTextChanged, this,
            &RemoteFileDialog::delayedCheckDirectory);
    connect(m_lookInCombo, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &RemoteFileDialog::delayedCheckDirectory);

    m_iconProvider = tul::createWinIconProvider();
    if (m_iconProvider)
        setIconProvider(m_iconProvider.get());

    // A copy: the hook may set what the lock guards.
    if (const Hook call = hook())
        call(this);
}

RemoteFileDialog::~RemoteFileDialog()
{
    // By design: also when another dialog is the instance. Whoever keeps the pointer asks too much.
    s_instance = nullptr;
    Q_EMIT aboutToBeDestroyed();
    if (m_iconProvider && iconProvider() == m_iconProvider.get())
        setIconProvider(nullptr);
}

DialogNavigation &RemoteFileDialog::navigation()
{
    return RemoteFileDialogBasePrivate::of(this)->navigation;
}

void RemoteFileDialog::setLocation(FileSystemLocation location)
{
    m_location = location;
    // Whichever is in force: a host may have put its own in place of the first.
    if (auto *const proxy = qobject_cast<RemoteProxyModel *>(proxyModel()))
        proxy->setLocation(location);
    if (location == AnyLocation)
        return;
    filterHistory();
    leaveOtherSide();
    navigation().keepPlaces(
        [this](const QString &path) { return isRemotePath(path) == isRemote(); });
    filterPlaces();
}

void RemoteFileDialog::filterHistory()
{
    QStringList kept;
    const QStringList paths = history();
    for (const QString &path : paths) {
        if (isRemotePath(path) == isRemote())
            kept.append(path);
    }
    setHistory(kept);
}

void RemoteFileDialog::filterPlaces()
{
    const tul::RemoteSettings &settings = tul::remoteSettings();
    QList<QUrl> kept;
    const QList<QUrl> places = sidebarUrls();
    for (const QUrl &place : places) {
        const QString path = place.toLocalFile();
        if (isLocalPath(path) == isRemote())
            continue;
        // The prefix has changed since, or the path is that of another system: what follows the
        // colon is taken for the path over there.
        const bool foreign = isRemote() && !isRemotePath(path);
        const QString rest = path.mid(path.indexOf(QLatin1Char(':')) + 1);
        kept.append(foreign ? QUrl::fromLocalFile(settings.prefix + rest) : place);
    }

    const bool hasWorkingDirectory = hasPlace(kept, settings.defaultWorkingDirectory);
    const bool hasHome = hasPlace(kept, settings.homeDirectory);
    if (isOfThisSide(settings.defaultWorkingDirectory) && !hasWorkingDirectory
        && settings.defaultWorkingDirectory != settings.homeDirectory)
        kept.append(QUrl::fromLocalFile(settings.defaultWorkingDirectory));
    if (isRemote() && !settings.homeDirectory.isEmpty() && !hasHome)
        kept.append(QUrl::fromLocalFile(settings.homeDirectory));
    if (kept != places)
        setSidebarUrls(kept);
}

void RemoteFileDialog::leaveOtherSide()
{
    // By design: a path that is neither local nor has the prefix is not left, and not rewritten as
    // a place would be.
    if (isLocalPath(directory().path()) != isRemote())
        return;
    const tul::RemoteSettings &settings = tul::remoteSettings();
    QStringList directories{isRemote() ? settings.prefix : QDir::homePath(), QString()};
    if (isOfThisSide(settings.defaultWorkingDirectory))
        directories.prepend(settings.defaultWorkingDirectory);
    // Some may not exist or not be reached. The last is the level of the drives.
    for (const QString &path : qAsConst(directories)) {
        if (navigation().goTo(path))
            return;
    }
}

bool RemoteFileDialog::isOfThisSide(const QString &path) const
{
    return !path.isEmpty() && isRemotePath(path) == isRemote();
}

QString RemoteFileDialog::selectedFile()
{
    return selectedFiles().value(0);
}

QStringList RemoteFileDialog::selectedFiles()
{
    return unmungePaths(RemoteFileDialogBase::selectedFiles());
}

QString RemoteFileDialog::mungePath(const QString &path)
{
    return isRemote() ? tul::addPrefix(path, tul::remoteSettings().prefix) : path;
}

QString RemoteFileDialog::unmungePath(const QString &path)
{
    return isRemote() ? tul::unmungedPath(path, tul::remoteSettings().prefix) : path;
}

QStringList RemoteFileDialog::unmungePaths(const QStringList &paths)
{
    QStringList result;
    for (const QString &path : paths)
        result.append(unmungePath(path));
    return result;
}

bool RemoteFileDialog::isRemotePath(const QString &path) const
{
    return tul::hasPrefix(path, tul::remoteSettings().prefix);
}

bool RemoteFileDialog::isLocalPath(const QString &path) const
{
    return tul::isLocalPath(path, tul::localDrives());
}

QString RemoteFileDialog::tildeExpansion(const QString &path, bool *expanded)
{
    return isRemote()
        ? tul::expandedRemoteTilde(path, tul::remoteSettings().homeDirectory, expanded)
        : RemoteFileDialogBase::tildeExpansion(path, expanded);
}

QString RemoteFileDialog::getEnvironmentVariable(const QString &name)
{
    // This machine's variables mean nothing over there.
    return isRemote() ? name : RemoteFileDialogBase::getEnvironmentVariable(name);
}

QStringList RemoteFileDialog::typedFiles()
{
    const QStringList files = RemoteFileDialogBase::typedFiles();
    return isRemote() ? tul::prefixedTypedFiles(files, tul::remoteSettings().prefix) : files;
}

void RemoteFileDialog::delayedCheckDirectory()
{
    // Queued, so that the box has finished its own work before the directory changes its text.
    QMetaObject::invokeMethod(this, "checkDirectory", Qt::QueuedConnection);
}

void RemoteFileDialog::checkDirectory()
{
    checkDirectory(m_lookInCombo->currentText());
}

void RemoteFileDialog::checkDirectory(const QString &path)
{
    if (fileSystemModel()->rootPath().isEmpty() || !isRemote() || path.isEmpty())
        return;
    const QString directory = lookInPath(path);
    if (directory != path)
        navigation().followTyping(directory);
}

QString RemoteFileDialog::lookInPath(const QString &text) const
{
    if (!isRemote())
        return {};
    const tul::RemoteSettings &settings = tul::remoteSettings();
    const QString rest = tul::stripPrefix(text, settings.prefix);
    // By design: relative to the default working directory, not to the one that is shown, and on
    // whichever side that lies. Where there is none, it is a path of this machine.
    if (!rest.isEmpty() && !rest.startsWith(QLatin1Char('/')))
        return tul::cleanDialogPath(settings.defaultWorkingDirectory + QLatin1Char('/') + rest);
    return tul::addPrefix(text, settings.prefix);
}

QString RemoteFileDialog::getOpenFileName(QWidget *parent, const QString &caption,
                                          const QString &dir, const QString &filter,
                                          QString *selectedFilter, QFileDialog::Options options,
                                          FileSystemLocation location)
{
    return chosenFiles({parent, caption, dir, filter, selectedFilter, options, location},
                       QFileDialog::ExistingFile)
        .value(0);
}

QStringList RemoteFileDialog::getOpenFileNames(QWidget *parent, const QString &caption,
                                               const QString &dir, const QString &filter,
                                               QString *selectedFilter,
                                               QFileDialog::Options options,
                                               FileSystemLocation location)
{
    return chosenFiles({parent, caption, dir, filter, selectedFilter, options, location},
                       QFileDialog::ExistingFiles);
}

QString RemoteFileDialog::getSaveFileName(QWidget *parent, const QString &caption,
                                          const QString &dir, const QString &filter,
                                          QString *selectedFilter, QFileDialog::Options options,
                                          FileSystemLocation location)
{
    return chosenFiles({parent, caption, dir, filter, selectedFilter, options, location},
                       QFileDialog::AnyFile, QFileDialog::AcceptSave)
        .value(0);
}

QString RemoteFileDialog::getExistingDirectory(QWidget *parent, const QString &caption,
                                               const QString &dir, QFileDialog::Options options,
                                               FileSystemLocation location)
{
    return chosenFiles({parent, caption, dir, QString(), nullptr, options, location},
                       directoryMode(options))
        .value(0);
}
