#pragma once

#include <QPoint>
#include <QString>

class DialogContext;
class QAbstractItemView;
class QModelIndex;

/// What a file dialog does to files: rename, delete, make a folder; and the menu that offers it.
///
/// Boxes, menus and editors run an event loop in which rows come and go: paths are kept across
/// them, never rows.
class DialogOperations
{
public:
    explicit DialogOperations(DialogContext *context)
        : m_context(context)
    {
    }

    void renameCurrent();
    void deleteSelected();
    void createFolder();
    void showContextMenu(QAbstractItemView *view, const QPoint &position);

private:
    bool isAllowedToDelete(const QModelIndex &entry) const;
    void remove(const QString &path);
    QString freeFolderName() const;

    DialogContext *const m_context;
};
