#pragma once

#include <tul-util-gui/filedialog/dialogcontext_p.h>
#include <tul-util-gui/filedialog/dialogfilters_p.h>
#include <tul-util-gui/filedialog/dialognavigation_p.h>
#include <tul-util-gui/filedialog/dialogoperations_p.h>
#include <tul-util-gui/filedialog/dialogselection_p.h>
#include <tul-util-gui/filedialog/remotefiledialogbase.h>

#include <QByteArray>
#include <QHash>
#include <QPointer>
#include <QVector>

class QFileIconProvider;
class QKeyEvent;
class RemoteFSCompleter;
struct DialogState;

/// Ties the parts of a file dialog together.
class RemoteFileDialogBasePrivate
{
public:
    explicit RemoteFileDialogBasePrivate(RemoteFileDialogBase *dialog);

    static RemoteFileDialogBasePrivate *of(RemoteFileDialogBase *dialog) { return dialog->d.get(); }

    /// Builds the dialog. `beginning` is where it begins whatever else is known, if it can.
    void construct(const QString &directory, const QString &filter, const QString &caption,
                   const QString &beginning = QString());

    /// Cuts what the children, which live a little longer, could still call.
    void cutConnections();

    void setFileMode(QFileDialog::FileMode mode);
    void setAcceptMode(QFileDialog::AcceptMode mode);
    void setOptions(QFileDialog::Options options);
    void setViewMode(QFileDialog::ViewMode mode);
    void setProxyModel(QAbstractProxyModel *proxy);

    DialogState state() const;
    bool restore(const DialogState &state);

    void retranslate();
    QString labelText(QFileDialog::DialogLabel label) const;
    void setLabelText(QFileDialog::DialogLabel label, const QString &text);

    /// What the button that accepts says; `opens` when it would only go into a directory.
    QString acceptText(bool opens) const;

    /// Whether a key of a view is the dialog's own business, which is then done.
    bool handleViewKey(const QKeyEvent *event);

    /// Goes where the user says in the look-in box.
    void goToTyped(const QString &text) { navigation.goToTyped(text); }

    /// A row was activated: enters its directory, or accepts.
    void activate(const QModelIndex &viewIndex);

    void renamed(const QString &oldName, const QString &newName) const;

    /// Ends what open() has connected.
    void disconnectReceiver();

    /// Closes a dialog that has told its choice.
    static void closeAccepted(RemoteFileDialogBase *dialog) { dialog->QDialog::accept(); }

    RemoteFileDialogBase *const q;
    DialogContext context;
    DialogNavigation navigation;
    DialogFilters filters;
    DialogSelection selection;
    DialogOperations operations;
    QPointer<RemoteFSCompleter> completer; ///< of the line edit, which owns it; null if replaced
    QFileIconProvider *ownIconProvider = nullptr; ///< the model's own
    QPointer<QObject> receiver; ///< that open() has connected
    QByteArray receiverSignal;
    QByteArray receiverMember;

private:
    void createModel();
    void connectModel();
    void connectWidgets();
    void connectActions();
    void attachViews();
    void updateTitle();
    void updateLabels();

    QHash<int, QString> m_labels; ///< that the host has set, by QFileDialog::DialogLabel
    QString m_ownTitle; ///< the last title that was not the host's
    QVector<QMetaObject::Connection> m_rowConnections; ///< to the model of the views
};
