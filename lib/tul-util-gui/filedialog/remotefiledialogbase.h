#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

#include <QDialog>
#include <QDir>
#include <QFileDialog>
#include <QList>
#include <QModelIndex>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <memory>

class QAbstractItemDelegate;
class QAbstractProxyModel;
class QAction;
class QFileIconProvider;
class RemoteFileDialogBasePrivate;
class RemoteFileSystemModel;

/// What one request for a file carries to the dialog that serves it.
struct RemoteFileDialogBaseArgs {
    /// The parent of the dialog.
    QWidget *parent = nullptr;
    /// The title of the window; empty for the title that goes with the modes.
    QString caption;
    /// Where to begin: a directory, or a directory and the name of a file in it.
    QString directory;
    /// The file that is suggested.
    QString selection;
    /// The name filters, ";;" between them.
    QString filter;
    /// What may be chosen.
    QFileDialog::FileMode mode = QFileDialog::AnyFile;
    /// The options of the dialog.
    QFileDialog::Options options;
};

/// A file dialog made of widgets on every platform, over a RemoteFileSystemModel, so that it
/// browses whatever the process's file engines serve as well as the local disk.
///
/// It has the interface and the behaviour of QFileDialog with QFileDialog::DontUseNativeDialog, and
/// shares its enumerations; what is said here is what differs or what a host must know besides. Use
/// RemoteFileDialog for the files of the remote machine; use this class to derive another dialog,
/// or where no side is preferred.
///
/// While a directory is being listed the pointer over the views is a busy one; a directory that
/// cannot be read says so in the views.
///
/// The layout, the side bar, the history and the last directory are kept in the user's settings
/// (organisation "Vantorq", group "RemoteFileDialog", key "state"): read by each constructor,
/// written by each destructor, shared by all dialogs.
///
/// *Ownership*: the dialog owns its model, its widgets, and a proxy model that is set; not the icon
/// provider and the item delegate, which the host keeps for as long as the dialog uses them.
///
/// *Threads*: the GUI thread. Listing is done by a thread of the model; only single files that are
/// named are asked for from here.
///
/// *Errors*: a path that does not exist changes nothing where a directory is asked for; what cannot
/// be accepted is told to the user by a message box. Empty texts and lists mean none.
///
/// *By design*: a completed name matches in any letter case, on a remote side too. All dialogs save
/// to one place, the last one wins. A slot that wants to be rid of the dialog calls deleteLater():
/// what the user does reaches it from the midst of a widget's work, which has to end first. Only in
/// filesSelected(), fileSelected() and the signals of QDialog, and only when the host itself has
/// called accept(), reject() or done(), may a slot delete the dialog at once.
class TUL_UTIL_GUI_EXPORT RemoteFileDialogBase : public QDialog
{
    Q_OBJECT
    Q_PROPERTY(QFileDialog::ViewMode viewMode READ viewMode WRITE setViewMode)
    Q_PROPERTY(QFileDialog::FileMode fileMode READ fileMode WRITE setFileMode)
    Q_PROPERTY(QFileDialog::AcceptMode acceptMode READ acceptMode WRITE setAcceptMode)
    Q_PROPERTY(bool readOnly READ isReadOnly WRITE setReadOnly DESIGNABLE false)
    Q_PROPERTY(bool resolveSymlinks READ resolveSymlinks WRITE setResolveSymlinks DESIGNABLE false)
    Q_PROPERTY(
        bool confirmOverwrite READ confirmOverwrite WRITE setConfirmOverwrite DESIGNABLE false)
    Q_PROPERTY(QString defaultSuffix READ defaultSuffix WRITE setDefaultSuffix)
    Q_PROPERTY(bool nameFilterDetailsVisible READ isNameFilterDetailsVisible WRITE
                   setNameFilterDetailsVisible DESIGNABLE false)
    Q_PROPERTY(QFileDialog::Options options READ options WRITE setOptions)

public:
    /// A dialog that begins in the last visited directory of the process or, where there is none
    /// yet, in that of the saved state, or else in the working directory.
    RemoteFileDialogBase(QWidget *parent, Qt::WindowFlags flags);

    /// `directory` may name a file, which is then suggested, and be relative to the working
    /// directory. An empty one stands for where the other constructor begins; a missing one for the
    /// last visited directory of the process, or its working directory when there is none.
    explicit RemoteFileDialogBase(QWidget *parent = nullptr, const QString &caption = QString(),
                                  const QString &directory = QString(),
                                  const QString &filter = QString());

    /// Saves the layout.
    ~RemoteFileDialogBase() override;

    /// The directory that is shown; "." where the drives are shown. A directory that does not exist
    /// is not entered, and neither is a file.
    QDir directory() const;
    void setDirectory(const QString &directory);
    void setDirectory(const QDir &directory);

    /// Puts the name into the line edit and goes to its directory, if it has one that exists.
    void selectFile(const QString &name);

    /// What is chosen so far, as whole paths: the typed names or the selected rows, whichever came
    /// last; where there are none, the shown directory, unless only existing files will do. Typed
    /// names carry the default suffix.
    QStringList selectedFiles() const;

    /// One filter, or several with ";;" or line ends between them: a name followed by patterns in
    /// brackets, or patterns alone, blanks between them. None means all files.
    void setNameFilter(const QString &filter);
    void setNameFilters(const QStringList &filters);
    QStringList nameFilters() const;

    /// Makes one of the name filters the current one; another text changes nothing. Where details
    /// are hidden the name alone will do.
    void selectNameFilter(const QString &filter);
    QString selectedNameFilter() const;

    /// Which kinds of entries the model shows.
    QDir::Filters filter() const;
    void setFilter(QDir::Filters filters);

    /// The former names of the name filter operations.
    void setFilter(const QString &filter);
    void setFilters(const QStringList &filters);
    QStringList filters() const;
    void selectFilter(const QString &filter);
    QString selectedFilter() const;

    QFileDialog::ViewMode viewMode() const;
    void setViewMode(QFileDialog::ViewMode mode);

    QFileDialog::FileMode fileMode() const;
    void setFileMode(QFileDialog::FileMode mode);

    QFileDialog::AcceptMode acceptMode() const;
    void setAcceptMode(QFileDialog::AcceptMode mode);

    /// Whether files can be renamed, deleted and made, which the option ReadOnly forbids.
    bool isReadOnly() const;
    void setReadOnly(bool enabled);

    /// The reverse of the option DontResolveSymlinks. The model shows links as they are either way.
    bool resolveSymlinks() const;
    void setResolveSymlinks(bool enabled);

    /// The reverse of the option DontConfirmOverwrite.
    bool confirmOverwrite() const;
    void setConfirmOverwrite(bool enabled);

    /// What is added, after a dot, to a name without a dot; a leading dot is dropped.
    QString defaultSuffix() const;
    void setDefaultSuffix(const QString &suffix);

    /// The reverse of the option HideNameFilterDetails: whether the box shows the patterns.
    bool isNameFilterDetailsVisible() const;
    void setNameFilterDetailsVisible(bool enabled);

    /// All options; the dialog is never native, whatever they say.
    QFileDialog::Options options() const;
    void setOptions(QFileDialog::Options options);
    bool testOption(QFileDialog::Option option) const;
    void setOption(QFileDialog::Option option, bool on = true);

    /// The recent places of the look-in box, with the shown directory among them, as the last one
    /// if it is new. Of the stored ones five are restored.
    QStringList history() const;
    void setHistory(const QStringList &paths);

    /// The places of the side bar, in their order.
    QList<QUrl> sidebarUrls() const;
    void setSidebarUrls(const QList<QUrl> &urls);

    /// A model between the file system model and the views. The dialog becomes its parent and sets
    /// its source; the former one is let go, but not deleted. Null removes it.
    QAbstractProxyModel *proxyModel() const;
    void setProxyModel(QAbstractProxyModel *model);

    /// Null brings back the toolkit's icons. The provider has to outlive the dialog, or to be
    /// replaced before it goes.
    QFileIconProvider *iconProvider() const;
    void setIconProvider(QFileIconProvider *provider);

    /// The delegate of both views.
    QAbstractItemDelegate *itemDelegate() const;
    void setItemDelegate(QAbstractItemDelegate *delegate);

    /// A text that is set stays, whatever the modes; without one a label shows the text for these.
    QString labelText(QFileDialog::DialogLabel label) const;
    void setLabelText(QFileDialog::DialogLabel label, const QString &text);

    /// Opens the dialog modal to its window. `member`, a slot or signal of `receiver`, is called
    /// with a QStringList when several files may be chosen, else with a QString; the connection
    /// ends when the dialog is closed.
    void open(QObject *receiver, const char *member);
    using QDialog::open;

    /// The layout as bytes. Restoring answers false, and changes nothing, when these are not a
    /// complete state; if only the part of the detail view's header is refused, the rest stays
    /// restored.
    QByteArray saveState() const;
    bool restoreState(const QByteArray &state);

    /// Shows a dialog and returns the chosen paths, or nothing when the user cancelled. `dir`, the
    /// filters and the options are those of QFileDialog; the chosen filter is stored where the user
    /// accepted.
    static QString getOpenFileName(QWidget *parent = nullptr, const QString &caption = QString(),
                                   const QString &dir = QString(),
                                   const QString &filter = QString(),
                                   QString *selectedFilter = nullptr,
                                   QFileDialog::Options options = {});
    static QStringList
    getOpenFileNames(QWidget *parent = nullptr, const QString &caption = QString(),
                     const QString &dir = QString(), const QString &filter = QString(),
                     QString *selectedFilter = nullptr, QFileDialog::Options options = {});
    static QString getSaveFileName(QWidget *parent = nullptr, const QString &caption = QString(),
                                   const QString &dir = QString(),
                                   const QString &filter = QString(),
                                   QString *selectedFilter = nullptr,
                                   QFileDialog::Options options = {});
    static QString getExistingDirectory(QWidget *parent = nullptr,
                                        const QString &caption = QString(),
                                        const QString &dir = QString(),
                                        QFileDialog::Options options = QFileDialog::ShowDirsOnly);

    void setVisible(bool visible) override;

    /// Replaces a tilde at the beginning by a home directory, here that of the local user, or of
    /// the one whose name follows it, where the system knows him.
    /// `expanded`, where given, tells whether there was something to replace.
    virtual QString tildeExpansion(const QString &path, bool *expanded = nullptr);

    /// The value of the environment variable if `name` is "$" and its name, else `name` unchanged.
    virtual QString getEnvironmentVariable(const QString &name);

    /// The names in the line edit, made absolute against the shown directory. A file whose name
    /// looks like several, or like a variable, is taken as it stands where it exists.
    virtual QStringList typedFiles();

public Q_SLOTS:
    /// Takes what is chosen, if it can be: enters a directory, asks before a file is overwritten,
    /// tells what is missing, or closes the dialog with filesSelected() and fileSelected().
    void accept() override;

    /// Closes the dialog and ends the connection that open() made.
    void done(int result) override;

Q_SIGNALS:
    /// Emitted when another row becomes the current one, with its path; with an empty text when
    /// there is none any longer.
    void currentChanged(const QString &path);

    /// Emitted when the user has gone to another directory, other than by back, forward and the
    /// key to the home directory.
    void directoryEntered(const QString &directory);

    /// Emitted when the dialog is accepted with exactly one file, after filesSelected(). Where any
    /// file may be chosen, that is the first of those that were typed.
    void fileSelected(const QString &file);

    /// Emitted when the dialog is accepted.
    void filesSelected(const QStringList &files);

    /// Emitted when the user has chosen a name filter.
    void filterSelected(const QString &filter);

protected:
    /// The dialog that a static function shows: its line edit is selected as a whole.
    explicit RemoteFileDialogBase(const RemoteFileDialogBaseArgs &args);

    void changeEvent(QEvent *event) override;

    /// The model under the views and the proxy model.
    RemoteFileSystemModel *fileSystemModel() const;

private Q_SLOTS:
    void _q_navigateBackward();
    void _q_navigateForward();
    void _q_navigateToParent();
    void _q_createDirectory();
    void _q_showListView();
    void _q_showDetailsView();
    void _q_showContextMenu(const QPoint &position);
    void _q_renameCurrent();
    void _q_deleteCurrent();
    void _q_showHidden();
    void _q_updateOkButton();
    void _q_autoCompleteFileName(const QString &text);
    void _q_enterDirectory(const QModelIndex &index);
    void _q_goToDirectory(const QString &path);
    void _q_useNameFilter(int index);
    void _q_selectionChanged();
    void _q_goToUrl(const QUrl &url);
    void _q_goHome();
    void _q_showHeader(QAction *action);
    void _q_currentChanged(const QModelIndex &index);
    void _q_fileRenamed(const QString &path, const QString &oldName, const QString &newName);
    void _q_pathChanged(const QString &path);
    void _q_rowsInserted(const QModelIndex &parent);

private:
    friend class RemoteFileDialog;
    friend class RemoteFileDialogBasePrivate;

    /// Where a dialog begins at once, if there is such a directory, instead of where the last one
    /// was: on a slow line each of them costs time.
    struct Beginning {
        QString directory;
    };
    RemoteFileDialogBase(QWidget *parent, const QString &caption, const QString &filter,
                         const Beginning &beginning);

    const std::unique_ptr<RemoteFileDialogBasePrivate> d;
};
