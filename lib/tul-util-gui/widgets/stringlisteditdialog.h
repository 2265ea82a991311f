#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

#include <QDialog>

#include <memory>

class QStringListModel;

namespace Ui
{
class StringListEditDialog;
}

/// A dialog in which the user edits a list of strings in place: adds, changes and removes entries.
///
/// The host gives it a list, executes it and takes the list back. Empty entries are not kept: one
/// that is edited until it is empty is removed, and so is a new one whose editing is cancelled.
/// Entries that the host itself gives as empty stay until they are edited.
///
/// *By design*: stringList() tells the edited list whether the dialog was accepted or not; the host
/// decides. One click on Remove, or one press of Delete, removes one entry.
class TUL_UTIL_GUI_EXPORT StringListEditDialog : public QDialog
{
    Q_OBJECT

public:
    explicit StringListEditDialog(const QStringList &list, QWidget *parent = nullptr);
    ~StringListEditDialog() override;

    /// The list as it stands. Setting it ends any editing.
    QStringList stringList() const;
    void setStringList(const QStringList &list);

    bool eventFilter(QObject *watched, QEvent *event) override;

private Q_SLOTS:
    void on_addPushButton_clicked();
    void on_removePushButton_clicked();
    void on_clearPushButton_clicked();
    void selectionChanged();
    void rowsInsertedOrRemoved();

private:
    QStringListModel *const m_model;
    const std::unique_ptr<Ui::StringListEditDialog> m_ui;
};
