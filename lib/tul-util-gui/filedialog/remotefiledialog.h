#pragma once

#include <tul-util-gui/filedialog/remotefiledialogbase.h>
#include <tul-util-gui/tul_util_gui_export.h>

#include <memory>

class DialogNavigation;
class QComboBox;

/// A file dialog for the files of the remote machine, or for those of this one.
///
/// A remote file is named by a prefix ("remote:" unless set otherwise) and the path that the file
/// has over there; a file-engine handler of the host resolves such names. The constructors, the
/// static functions, selectedFile() and selectedFiles() speak of paths without the prefix. All else
/// that comes from RemoteFileDialogBase, and its signals, speaks of paths with it, as mungePath()
/// and unmungePath() convert them.
///
/// A remote dialog shows remote files only. What is typed into its look-in box leads to a remote
/// directory: a path that begins with "/" to that directory, a relative one to a directory below
/// the default working directory.
///
/// Before the first dialog the host sets what is the same for all of them: the prefix, the home of
/// the remote machine, the directory to begin in, and a hook that gets each new dialog.
///
/// *Threads*: the GUI thread, but for the static accessors of the settings, which any thread may
/// call. Dialogs read the settings without locking, so that they may be changed only while no
/// dialog is open.
///
/// *Errors*: a static function returns an empty result when the user cancels, and leaves the
/// selected filter alone. A path without the prefix is given back as it is, with a warning.
///
/// *By design*: the prefix is compared by case everywhere. A prefix needs at least two characters
/// before its colon, and no "/". In AnyLocation, paths are those of this machine. The home of
/// another remote user ("~user") is not known and stays as typed, environment variables too.
class TUL_UTIL_GUI_EXPORT RemoteFileDialog : public RemoteFileDialogBase
{
    Q_OBJECT
    Q_PROPERTY(FileSystemLocation location READ location WRITE setLocation)

public:
    /// Which files a dialog shows.
    enum FileSystemLocation {
        LocalLocation, ///< those of this machine; paths are left as they are
        RemoteLocation, ///< those of the remote machine, and only those
        AnyLocation ///< all
    };
    Q_ENUM(FileSystemLocation)

    using Hook = void (*)(RemoteFileDialog *);

    /// A remote dialog.
    RemoteFileDialog(QWidget *parent, Qt::WindowFlags flags);

    /// `directory` has no prefix. It is disregarded where there is no such directory, also when it
    /// names a file.
    explicit RemoteFileDialog(QWidget *parent = nullptr, const QString &caption = QString(),
                              const QString &directory = QString(),
                              const QString &filter = QString(),
                              FileSystemLocation location = RemoteLocation);
    ~RemoteFileDialog() override;

    /// What the names of remote files begin with. Every path carries an empty prefix.
    static QString remotePrefix();
    static void setRemotePrefix(const QString &prefix);

    /// The home of the remote user, with the prefix: a place in the side bar, and what a tilde
    /// stands for. Empty at first.
    static QString remoteHomeDirectory();
    static void setRemoteHomeDirectory(const QString &directory);

    /// Where dialogs of its side begin, and a place in their side bars: a remote directory with the
    /// prefix or a local one without. Empty at first.
    static QString defaultWorkingDirectory();
    static void setDefaultWorkingDirectory(const QString &directory);

    /// Called with each dialog at the end of its construction, before its location is set; null for
    /// none. It must not delete the dialog.
    static Hook hook();
    static void setHook(Hook hook);

    /// The dialog that was made last; null once any dialog was destroyed, by design also when it
    /// was an older one.
    static RemoteFileDialog *instance();

    /// Setting the location hides what is of the other side, drops it from history, side bar, and
    /// the places for back and forward, and leaves a directory of the other side for the default
    /// working directory, or else for the home of the local user or the root of the remote machine,
    /// or, when that cannot be reached, for the level of the drives. AnyLocation only shows all.
    FileSystemLocation location() const { return m_location; }
    void setLocation(FileSystemLocation location);

    /// What the user has chosen, without the prefix; selectedFile() is the first of it, or empty.
    QString selectedFile();
    QStringList selectedFiles();

    /// Adds the prefix in a remote dialog, to a path that has none; nothing stands between them.
    QString mungePath(const QString &path);

    /// Takes the prefix away in a remote dialog.
    QString unmungePath(const QString &path);
    QStringList unmungePaths(const QStringList &paths);

    /// Whether a path has the prefix, whatever the location.
    bool isRemotePath(const QString &path) const;

    /// Show a dialog as those of RemoteFileDialogBase do, on the side that `location` names, and
    /// return paths without prefix. `dir` has none either.
    static QString getOpenFileName(QWidget *parent = nullptr, const QString &caption = QString(),
                                   const QString &dir = QString(),
                                   const QString &filter = QString(),
                                   QString *selectedFilter = nullptr,
                                   QFileDialog::Options options = {},
                                   FileSystemLocation location = RemoteLocation);
    static QStringList
    getOpenFileNames(QWidget *parent = nullptr, const QString &caption = QString(),
                     const QString &dir = QString(), const QString &filter = QString(),
                     QString *selectedFilter = nullptr, QFileDialog::Options options = {},
                     FileSystemLocation location = RemoteLocation);
    static QString getSaveFileName(QWidget *parent = nullptr, const QString &caption = QString(),
                                   const QString &dir = QString(),
                                   const QString &filter = QString(),
                                   QString *selectedFilter = nullptr,
                                   QFileDialog::Options options = {},
                                   FileSystemLocation location = RemoteLocation);
    static QString getExistingDirectory(QWidget *parent = nullptr,
                                        const QString &caption = QString(),
                                        const QString &dir = QString(),
                                        QFileDialog::Options options = QFileDialog::ShowDirsOnly,
                                        FileSystemLocation location = RemoteLocation);

    QString tildeExpansion(const QString &path, bool *expanded = nullptr) override;
    QString getEnvironmentVariable(const QString &name) override;
    QStringList typedFiles() override;

Q_SIGNALS:
    /// Emitted when the destructor begins, while the dialog can still be asked.
    void aboutToBeDestroyed();

private Q_SLOTS:
    void delayedCheckDirectory();
    void checkDirectory();

private:
    void init();
    bool isRemote() const { return m_location == RemoteLocation; }
    bool isLocalPath(const QString &path) const;
    bool isOfThisSide(const QString &path) const;
    void checkDirectory(const QString &path);
    QString lookInPath(const QString &text) const;
    void filterHistory();
    void filterPlaces();
    void leaveOtherSide();
    DialogNavigation &navigation();

    FileSystemLocation m_location;
    QComboBox *m_lookInCombo = nullptr;
    std::unique_ptr<QFileIconProvider> m_iconProvider; // null for that of the model
};
