#include <tul-util-gui/filedialog/dialogviews_p.h>
#include <tul-util-gui/filedialog/remotefiledialogbase_p.h>

#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QPointer>
#include <QStyleOptionComboBox>
#include <QStylePainter>

namespace
{

/// The height of a view that shows some thirty rows, before it has any.
int comfortableHeight(int heightOfFirstRow)
{
    constexpr int rows = 30;
    constexpr int leastRowHeight = 10;
    return rows * qMax(leastRowHeight, heightOfFirstRow);
}

void paintNote(QAbstractItemView *view, const QString &note)
{
    if (note.isEmpty())
        return;
    const int margin = view->fontMetrics().height();
    const QRect space = view->viewport()->rect().adjusted(margin, margin, -margin, -margin);
    QPainter painter(view->viewport());
    painter.setPen(view->palette().color(QPalette::Disabled, QPalette::Text));
    painter.drawText(space, Qt::AlignCenter | Qt::TextWordWrap, note);
}

void replaceNote(QAbstractItemView *view, QString &note, const QString &replacement)
{
    if (note == replacement)
        return;
    note = replacement;
    view->setAccessibleDescription(note);
    view->viewport()->update();
}

} // namespace

void RemoteFileDialogBaseListView::setNote(const QString &note)
{
    replaceNote(this, m_note, note);
}

QSize RemoteFileDialogBaseListView::sizeHint() const
{
    return {2 * QAbstractScrollArea::sizeHint().width(), comfortableHeight(sizeHintForRow(0))};
}

void RemoteFileDialogBaseListView::keyPressEvent(QKeyEvent *event)
{
    if (!m_dialog || !m_dialog->handleViewKey(event))
        QListView::keyPressEvent(event);
    // Otherwise the dialog would take it next, and Return press its default button.
    event->accept();
}

void RemoteFileDialogBaseListView::paintEvent(QPaintEvent *event)
{
    QListView::paintEvent(event);
    paintNote(this, m_note);
}

void RemoteFileDialogBaseTreeView::setNote(const QString &note)
{
    replaceNote(this, m_note, note);
}

QSize RemoteFileDialogBaseTreeView::sizeHint() const
{
    return {4 * header()->sizeHint().width(), comfortableHeight(sizeHintForRow(0))};
}

void RemoteFileDialogBaseTreeView::keyPressEvent(QKeyEvent *event)
{
    if (!m_dialog || !m_dialog->handleViewKey(event))
        QTreeView::keyPressEvent(event);
    event->accept(); // as in the list view
}

void RemoteFileDialogBaseTreeView::paintEvent(QPaintEvent *event)
{
    QTreeView::paintEvent(event);
    paintNote(this, m_note);
}

void RemoteFileDialogBaseLineEdit::keyPressEvent(QKeyEvent *event)
{
    const bool leavesDialog = event->matches(QKeySequence::Cancel);
    QLineEdit::keyPressEvent(event);
    event->setAccepted(!leavesDialog);
}

void RemoteFileDialogBaseComboBox::showPopup()
{
    if (m_dialog)
        m_dialog->navigation.fillLookInBox();
    QComboBox::showPopup();
}

void RemoteFileDialogBaseComboBox::keyPressEvent(QKeyEvent *event)
{
    const bool goes = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!goes || !isEditable() || !m_dialog) {
        QComboBox::keyPressEvent(event);
        return;
    }
    event->accept();
    m_dialog->goToTyped(currentText());
}

void RemoteFileDialogBaseComboBox::focusOutEvent(QFocusEvent *event)
{
    const QPointer<RemoteFileDialogBaseComboBox> guard(this);
    QComboBox::focusOutEvent(event); // slots may hear of it
    const bool comesBack
        = event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason;
    if (guard && m_dialog && !comesBack)
        m_dialog->navigation.endTyping();
}

void RemoteFileDialogBaseComboBox::paintEvent(QPaintEvent *event)
{
    if (isEditable()) {
        QComboBox::paintEvent(event);
        return;
    }
    QStyleOptionComboBox option;
    initStyleOption(&option);
    const int icon = option.currentIcon.isNull() ? 0 : option.iconSize.width() + 4;
    const QRect field
        = style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    option.currentText = option.fontMetrics.elidedText(option.currentText, Qt::ElideMiddle,
                                                       qMax(0, field.width() - icon));
    QStylePainter painter(this);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}
