#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

#include <QAbstractButton>

/// A small cross without a border, the one with which the style closes tabs, for panels and tabs
/// that can be closed. The host connects clicked().
///
/// Its size is that of the style's cross: 0 x 0 under a style that has none. It takes no keyboard
/// focus, so a host gives what it closes a shortcut as well; screen readers are told "Close".
///
/// *By design*: the cross is always drawn as on a selected tab. A disabled button does not react to
/// the mouse.
class TUL_UTIL_GUI_EXPORT CloseButton : public QAbstractButton
{
    Q_OBJECT

public:
    explicit CloseButton(QWidget *parent = nullptr);

    QSize sizeHint() const override;

protected:
    void enterEvent(QEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
};
