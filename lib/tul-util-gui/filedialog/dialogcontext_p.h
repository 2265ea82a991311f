#pragma once

#include <tul-util-gui/filedialog/acceptdecision_p.h>
#include <tul-util-gui/filedialog/dialogwidgets_p.h>

#include <QAbstractProxyModel>
#include <QFileDialog>
#include <QMessageBox>
#include <QModelIndex>
#include <QPointer>
#include <QSet>

class QAbstractItemModel;
class QAbstractItemView;
class QItemSelectionModel;
class RemoteFileDialogBase;
class RemoteFileSystemModel;

/// What the parts of a file dialog share: its widgets, its modes, and the model with the proxy that
/// may stand between it and the views.
///
/// The model takes its own indexes, the views those of the proxy; toModel() and toView() go from
/// one to the other, and give an invalid index for one of a third model.
class DialogContext
{
public:
    explicit DialogContext(RemoteFileDialogBase *fileDialog)
        : dialog(fileDialog)
    {
    }

    QAbstractItemModel *viewModel() const;
    QModelIndex toModel(const QModelIndex &index) const;
    QModelIndex toView(const QModelIndex &index) const;

    /// The view that is shown, and the selection that both views share.
    QAbstractItemView *view() const;
    QItemSelectionModel *selection() const;

    /// The shown directory as the dialog tells it, empty for the level of the drives, and its index
    /// in the model.
    QString rootPath() const;
    QModelIndex rootIndex() const;

    /// A path as the dialog tells it.
    QString path(const QModelIndex &modelIndex) const;

    /// The row of an entry of the shown directory, in the model; invalid while the directory is
    /// being listed, so that nothing is shown too early or in spite of the filters.
    QModelIndex shownEntry(const QString &path) const;

    /// The paths of the selected rows, in the order in which they were selected.
    QStringList selectedPaths() const;

    /// Asks the row of a shown entry, else the disk, or what serves it.
    tul::FileKind kindOf(const QString &path) const;

    /// Asks the disk, or what serves it: a row may be older than what another program has done.
    static tul::FileKind storedKindOf(const QString &path);

    /// The same for what is asked with each key: in a listed directory of another machine what has
    /// no row is missing, so that typing a name never waits for that machine.
    tul::FileKind likelyKindOf(const QString &path) const;

    /// Called when the rows of the shown directory have changed.
    void forgetNames() { m_namesKnown = false; }

    /// Whether entries of a directory can be made, renamed and removed, as far as is known; never
    /// on the level of the drives.
    bool isChangeable(const QModelIndex &directory) const;

    bool isReadOnly() const { return options.testFlag(QFileDialog::ReadOnly); }

    /// Shows a box with a text that is no rich text, and returns the button; NoButton when it was
    /// closed otherwise or has gone with the dialog, which the caller has to expect.
    QMessageBox::StandardButton warn(const QString &title, const QString &text,
                                     QMessageBox::StandardButtons buttons,
                                     QMessageBox::StandardButton defaultButton) const;

    RemoteFileDialogBase *const dialog;
    DialogWidgets ui;
    RemoteFileSystemModel *model = nullptr; ///< a child of the dialog
    QPointer<QAbstractProxyModel> proxy;
    bool listing = false; ///< the entries of the shown directory are still to come

    QFileDialog::FileMode fileMode = QFileDialog::AnyFile;
    QFileDialog::AcceptMode acceptMode = QFileDialog::AcceptOpen;
    QFileDialog::Options options;
    QString defaultSuffix;

private:
    bool isShownName(const QString &name) const;

    mutable QSet<QString> m_names; ///< of the shown directory, where they are known
    mutable bool m_namesKnown = false;
};
