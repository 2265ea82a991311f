#pragma once

#include <QCompleter>

class DialogContext;

/// Completes typed paths with the entries of the file system model: names with those of the shown
/// directory, names with slashes with those of the directory they lead to, absolute paths with
/// those of the side that is shown.
class RemoteFSCompleter : public QCompleter
{
    Q_OBJECT

public:
    RemoteFSCompleter(DialogContext *context, QObject *parent);

    /// Has the directory listed that the text leads to, and offers its entries when they are there.
    void prepare(const QString &text);
    void directoryLoaded(const QString &path);

    QString pathFromIndex(const QModelIndex &index) const override;
    QStringList splitPath(const QString &path) const override;

private:
    QString absolutePath(const QString &text) const;

    DialogContext *const m_context;
    QString m_awaited; ///< the directory whose entries are to be offered
};
