#pragma once

#include <QComboBox>
#include <QLineEdit>
#include <QListView>
#include <QTreeView>

class RemoteFileDialogBasePrivate;

// The widgets of a file dialog that answer keys in its own way. Each points back to the private
// part of the dialog, until the dialog's destructor clears that: the widgets live a little longer.

/// The short view of the shown directory.
class RemoteFileDialogBaseListView : public QListView
{
    Q_OBJECT

public:
    explicit RemoteFileDialogBaseListView(QWidget *parent)
        : QListView(parent)
    {
    }

    void setDialog(RemoteFileDialogBasePrivate *dialog) { m_dialog = dialog; }

    /// A sentence in the middle of the view, about what it cannot show; empty for none.
    void setNote(const QString &note);

    QSize sizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    RemoteFileDialogBasePrivate *m_dialog = nullptr;
    QString m_note;
};

/// The detailed view of the shown directory.
class RemoteFileDialogBaseTreeView : public QTreeView
{
    Q_OBJECT

public:
    explicit RemoteFileDialogBaseTreeView(QWidget *parent)
        : QTreeView(parent)
    {
    }

    void setDialog(RemoteFileDialogBasePrivate *dialog) { m_dialog = dialog; }
    void setNote(const QString &note);
    QSize sizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    RemoteFileDialogBasePrivate *m_dialog = nullptr;
    QString m_note;
};

/// The line edit of the file names. It keeps the Return key, which accepts, from pressing the
/// default button as well.
class RemoteFileDialogBaseLineEdit : public QLineEdit
{
    Q_OBJECT

public:
    explicit RemoteFileDialogBaseLineEdit(QWidget *parent)
        : QLineEdit(parent)
    {
    }

protected:
    void keyPressEvent(QKeyEvent *event) override;
};

/// The look-in box: shows the directory, takes a typed path, and offers the ancestors and the
/// recent places.
class RemoteFileDialogBaseComboBox : public QComboBox
{
    Q_OBJECT

public:
    explicit RemoteFileDialogBaseComboBox(QWidget *parent)
        : QComboBox(parent)
    {
    }

    void setDialog(RemoteFileDialogBasePrivate *dialog) { m_dialog = dialog; }

    void showPopup() override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

    /// Shortens a path that is too long in the middle, where the box cannot be edited.
    void paintEvent(QPaintEvent *event) override;

private:
    RemoteFileDialogBasePrivate *m_dialog = nullptr;
};
