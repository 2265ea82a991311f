#pragma once

#include <tul-util-gui/widgets/sidebarwidget.h>

#include <QVector>

class FlatButton;
class QVBoxLayout;

/// The strip at the side of the window: a button for each page, coloured from the palette.
class PageBar : public SideBarWidget
{
    Q_OBJECT

public:
    explicit PageBar(QWidget *parent = nullptr);

    void addPage(const QString &title);

    /// Shows which page is the current one, by number from 0.
    void setCurrentPage(int index);

Q_SIGNALS:
    /// Emitted when the button of a page is clicked.
    void pageChosen(int index);

protected:
    void changeEvent(QEvent *event) override;

private:
    void applyPalette();
    void applyDirection();

    QVBoxLayout *m_layout;
    QVector<FlatButton *> m_buttons;
};
