#include <tul-util-gui/filedialog/executablefileiconprovider_p.h>
#include <tul-util-gui/filedialog/executableproxymodel_p.h>
#include <tul-util-gui/filedialog/filedialog.h>
#include <tul-util-gui/filedialog/filedialog_p.h>
#include <tul-util-gui/filedialog/filtermonitor_p.h>
#include <tul-util-gui/filedialog/namefilters_p.h>
#include <tul-util-gui/filedialog/remotefiledialog.h>
#include <tul-util-gui/filedialog/remotesettings_p.h>
#include <tul-util-gui/filedialog/scopeddialog_p.h>

#include <tul-util/pathstring.h>

#include <QCoreApplication>
#include <QFileInfo>
#include <QMap>
#include <QMessageBox>
#include <QPointer>

namespace tul
{

QString purposeKey(const QString &caption)
{
    QString purpose = caption;
    for (const QLatin1String verb :
         {QLatin1String("Choose "), QLatin1String("Save "), QLatin1String("Open ")}) {
        if (purpose.startsWith(verb))
            purpose.remove(0, verb.size());
    }
    return purpose.toLower();
}

QString withSuffix(const QString &answer, const QString &suffix)
{
    // By design: a name that has another suffix gets this one too, so that what is written is
    // always found again under the filter that it was saved with.
    const QString ending = QLatin1Char('.') + suffix;
    return suffix.isNull() || answer.endsWith(ending) ? answer : answer + ending;
}

} // namespace tul

namespace
{

enum class Side { Local, Remote };

struct Settings {
    bool allFilesLocal = true;
    bool sourcesLocal = false;
    QMap<QString, QString> localDirectories; // by purpose
    QMap<QString, QString> remoteDirectories;
};

Settings &settings()
{
    static Settings theSettings;
    return theSettings;
}

Side sideOfFiles()
{
    return settings().allFilesLocal ? Side::Local : Side::Remote;
}

Side sideOfSources()
{
    return settings().sourcesLocal ? Side::Local : sideOfFiles();
}

QMap<QString, QString> &directoriesOf(Side side)
{
    return side == Side::Remote ? settings().remoteDirectories : settings().localDirectories;
}

/// A path, or where the file is that it names: a remote dialog takes nothing but directories.
QString remoteDirectoryOf(const QString &path)
{
    const QString served = tul::addPrefix(path, tul::remoteSettings().prefix);
    return QFileInfo(served).isDir() ? path : PathString(path).path();
}

/// What the caller asks for.
struct Request {
    Side side;
    QWidget *parent;
    QString caption;
    QString dir;
    QFileDialog::Options options;
    QString filter = QString();
    QString *selectedFilter = nullptr;

    bool isRemote() const { return side == Side::Remote; }

    /// Where to start.
    QString directory() const
    {
        if (dir.isEmpty())
            return directoriesOf(side).value(tul::purposeKey(caption));
        return isRemote() ? remoteDirectoryOf(dir) : dir;
    }

    void rememberDirectory(const QString &chosen) const
    {
        if (!chosen.isEmpty())
            directoriesOf(side).insert(tul::purposeKey(caption), chosen);
    }
    void rememberFile(const QString &chosen) const { rememberDirectory(PathString(chosen).path()); }
};

QString openFile(const Request &request)
{
    const QString chosen = request.isRemote()
        ? RemoteFileDialog::getOpenFileName(request.parent, request.caption, request.directory(),
                                            request.filter, request.selectedFilter, request.options,
                                            RemoteFileDialog::RemoteLocation)
        : QFileDialog::getOpenFileName(request.parent, request.caption, request.directory(),
                                       request.filter, request.selectedFilter, request.options);
    request.rememberFile(chosen);
    return chosen;
}

QStringList openFiles(const Request &request)
{
    const QStringList chosen = request.isRemote()
        ? RemoteFileDialog::getOpenFileNames(request.parent, request.caption, request.directory(),
                                             request.filter, request.selectedFilter,
                                             request.options, RemoteFileDialog::RemoteLocation)
        : QFileDialog::getOpenFileNames(request.parent, request.caption, request.directory(),
                                        request.filter, request.selectedFilter, request.options);
    request.rememberFile(chosen.value(0));
    return chosen;
}

QString chooseDirectory(const Request &request)
{
    const QString chosen = request.isRemote()
        ? RemoteFileDialog::getExistingDirectory(request.parent, request.caption,
                                                 request.directory(), request.options,
                                                 RemoteFileDialog::RemoteLocation)
        : QFileDialog::getExistingDirectory(request.parent, request.caption, request.directory(),
                                            request.options);
    request.rememberDirectory(chosen);
    return chosen;
}

QString saveRemoteFile(const Request &request)
{
    const tul::ScopedDialog<RemoteFileDialog> dialog(request.parent, request.caption,
                                                     request.directory(), request.filter,
                                                     RemoteFileDialog::RemoteLocation);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    if (request.selectedFilter)
        dialog->selectNameFilter(*request.selectedFilter);
    dialog->setOptions(request.options);
    dialog->setLocation(RemoteFileDialog::RemoteLocation);

    const QString suffix = tul::defaultSuffix(request.filter);
    if (!suffix.isNull()) {
        dialog->setDefaultSuffix(suffix);
    } else if (!request.filter.isEmpty()) {
        auto *const monitor = new FileDialog::RemoteFileDialogFilterMonitor(dialog.get());
        QObject::connect(dialog.get(), &RemoteFileDialog::filterSelected, monitor,
                         &FileDialog::RemoteFileDialogFilterMonitor::filterUpdated);
        monitor->filterUpdated(dialog->selectedNameFilter());
    }

    if (!dialog.accepted())
        return {};
    if (request.selectedFilter)
        *request.selectedFilter
            = tul::filterShownAs(dialog->selectedNameFilter(), dialog->nameFilters());
    return dialog->selectedFiles().value(0);
}

bool mayReplace(QWidget *parent, const QString &caption, const QString &fileName)
{
    const tul::ScopedDialog<QMessageBox> box(
        QMessageBox::Warning, caption,
        QCoreApplication::translate("FileDialog", "%1 already exists.\nDo you want to replace it?")
            .arg(QFileInfo(fileName).fileName()),
        QMessageBox::Yes | QMessageBox::No, parent);
    box->setTextFormat(Qt::PlainText); // the name may look like mark-up
    box->setDefaultButton(QMessageBox::No);
    return box->exec() == QMessageBox::Yes;
}

QString saveLocalFile(const Request &request)
{
    const QString suffix = tul::defaultSuffix(request.filter);
    const QPointer<QWidget> parent = request.parent;
    QString filter = request.selectedFilter ? *request.selectedFilter : QString();
    for (;;) {
        const QString answer = QFileDialog::getSaveFileName(
            parent, request.caption, request.directory(), request.filter, &filter,
            request.options | QFileDialog::DontConfirmOverwrite);
        if (answer.isNull())
            return {};
        const QString fileName = tul::withSuffix(answer, suffix);
        if (!QFileInfo::exists(fileName) || mayReplace(parent, request.caption, fileName)) {
            if (request.selectedFilter)
                *request.selectedFilter = filter;
            return fileName;
        }
        if (request.parent && !parent)
            return {};
    }
}

QString saveFile(const Request &request)
{
    const QString chosen = request.isRemote() ? saveRemoteFile(request) : saveLocalFile(request);
    request.rememberFile(chosen);
    return chosen;
}

QString executableFilters()
{
    return QCoreApplication::translate("FileDialog", "Executable Files (*);; All Files (*)");
}

/// Lets a dialog choose a program: the proxy narrows the dialog's list, from the start and when the
/// user chooses another filter. It goes by the words of the filter, which are those of the user's
/// language, so that it is told the original ones.
template<class Dialog, class Proxy>
void prepareExecutablePicker(Dialog *dialog, Proxy *proxy, QFileIconProvider *icons)
{
    dialog->setProxyModel(proxy);
    proxy->setParent(dialog);
    dialog->setIconProvider(icons);
    const auto narrow = [dialog, proxy](const QString &chosen) {
        const QStringList filters = dialog->nameFilters();
        const bool programs = tul::filterShownAs(chosen, filters) == filters.constFirst();
        proxy->filterSelected(programs ? QStringLiteral("Executable Files (*)")
                                       : QStringLiteral("All Files (*)"));
    };
    QObject::connect(dialog, &Dialog::filterSelected, proxy, narrow);
    narrow(dialog->selectedNameFilter());
}

QString chooseLocalExecutable(const Request &request)
{
    FileDialog::ExecutableFileIconProvider icons; // outlives the dialog
    const tul::ScopedDialog<QFileDialog> dialog(request.parent, request.caption,
                                                request.directory(), executableFilters());
    dialog->setFileMode(QFileDialog::ExistingFile);
    // A native dialog would ignore the proxy.
    dialog->setOptions(request.options | QFileDialog::DontUseNativeDialog);
    prepareExecutablePicker(dialog.get(),
                            new FileDialog::LocalExecutableFileProxyModel(dialog.get()), &icons);
    return dialog.accepted() ? dialog->selectedFiles().value(0) : QString();
}

QString chooseRemoteExecutable(const Request &request)
{
    FileDialog::ExecutableFileIconProvider icons; // outlives the dialog
    const tul::ScopedDialog<RemoteFileDialog> dialog(request.parent, request.caption,
                                                     request.directory(), executableFilters(),
                                                     RemoteFileDialog::RemoteLocation);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setOptions(request.options);
    auto *const proxy = new FileDialog::RemoteExecutableFileProxyModel(dialog.get());
    proxy->setLocation(RemoteFileDialog::RemoteLocation);
    prepareExecutablePicker(dialog.get(), proxy, &icons);
    dialog->setLocation(RemoteFileDialog::RemoteLocation);
    return dialog.accepted() ? dialog->selectedFile() : QString();
}

} // namespace

namespace FileDialog
{

bool allFilesLocal()
{
    return settings().allFilesLocal;
}

void setAllFilesLocal(bool local)
{
    settings().allFilesLocal = local;
}

bool sourcesLocal()
{
    return settings().sourcesLocal;
}

void setSourcesLocal(bool local)
{
    settings().sourcesLocal = local;
}

QString getLocalOpenFileName(QWidget *parent, const QString &caption, const QString &dir,
                             const QString &filter, QString *selectedFilter,
                             QFileDialog::Options options)
{
    return openFile({Side::Local, parent, caption, dir, options, filter, selectedFilter});
}

QStringList getLocalOpenFileNames(QWidget *parent, const QString &caption, const QString &dir,
                                  const QString &filter, QString *selectedFilter,
                                  QFileDialog::Options options)
{
    return openFiles({Side::Local, parent, caption, dir, options, filter, selectedFilter});
}

QString getLocalSaveFileName(QWidget *parent, const QString &caption, const QString &dir,
                             const QString &filter, QString *selectedFilter,
                             QFileDialog::Options options)
{
    return saveFile({Side::Local, parent, caption, dir, options, filter, selectedFilter});
}

QString getLocalExistingDirectory(QWidget *parent, const QString &caption, const QString &dir,
                                  QFileDialog::Options options)
{
    return chooseDirectory({Side::Local, parent, caption, dir, options});
}

QString getRemoteOpenFileName(QWidget *parent, const QString &caption, const QString &dir,
                              const QString &filter, QString *selectedFilter,
                              QFileDialog::Options options)
{
    return openFile({sideOfFiles(), parent, caption, dir, options, filter, selectedFilter});
}

QStringList getRemoteOpenFileNames(QWidget *parent, const QString &caption, const QString &dir,
                                   const QString &filter, QString *selectedFilter,
                                   QFileDialog::Options options)
{
    return openFiles({sideOfFiles(), parent, caption, dir, options, filter, selectedFilter});
}

QString getRemoteSaveFileName(QWidget *parent, const QString &caption, const QString &dir,
                              const QString &filter, QString *selectedFilter,
                              QFileDialog::Options options)
{
    return saveFile({sideOfFiles(), parent, caption, dir, options, filter, selectedFilter});
}

QString getRemoteExistingDirectory(QWidget *parent, const QString &caption, const QString &dir,
                                   QFileDialog::Options options)
{
    return chooseDirectory({sideOfFiles(), parent, caption, dir, options});
}

QString getSourceCodeFileName(QWidget *parent, const QString &caption, const QString &dir,
                              const QString &filter, QString *selectedFilter,
                              QFileDialog::Options options)
{
    return openFile({sideOfSources(), parent, caption, dir, options, filter, selectedFilter});
}

QStringList getSourceCodeFileNames(QWidget *parent, const QString &caption, const QString &dir,
                                   const QString &filter, QString *selectedFilter,
                                   QFileDialog::Options options)
{
    return openFiles({sideOfSources(), parent, caption, dir, options, filter, selectedFilter});
}

QString getSourceCodeSaveFileName(QWidget *parent, const QString &caption, const QString &dir,
                                  const QString &filter, QString *selectedFilter,
                                  QFileDialog::Options options)
{
    return saveFile({sideOfSources(), parent, caption, dir, options, filter, selectedFilter});
}

QString getSourceCodeExistingDirectory(QWidget *parent, const QString &caption, const QString &dir,
                                       QFileDialog::Options options)
{
    return chooseDirectory({sideOfSources(), parent, caption, dir, options});
}

QString getRemoteExecutableFileName(QWidget *parent, const QString &caption, const QString &dir,
                                    QFileDialog::Options options)
{
    const Request request{sideOfFiles(), parent, caption, dir, options};
    const QString chosen
        = request.isRemote() ? chooseRemoteExecutable(request) : chooseLocalExecutable(request);
    request.rememberFile(chosen);
    return chosen;
}

} // namespace FileDialog
