#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

#include <QColor>
#include <QWidget>

/// A plain panel with a background colour and a rule of one pixel along one edge, each only when
/// its colour is valid. For the strip of buttons at the side of a window; the host gives it a
/// layout.
///
/// *By design*: the setters only store. They do not repaint, so the new look shows at the next
/// paint event, and whoever wants it at once calls update(). A line position outside the
/// enumeration draws no rule.
class TUL_UTIL_GUI_EXPORT SideBarWidget : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(LinePosition linePosition READ linePosition WRITE setLinePosition)
    Q_PROPERTY(QColor backgroundColour READ backgroundColour WRITE setBackgroundColour)
    Q_PROPERTY(QColor lineColour READ lineColour WRITE setLineColour)

public:
    /// The edge along which the rule runs. It is not mirrored in right-to-left layouts.
    enum LinePosition : int { North = 0, South = 1, West = 2, East = 3 };
    Q_ENUM(LinePosition)

    explicit SideBarWidget(QWidget *parent = nullptr);

    LinePosition linePosition() const;
    void setLinePosition(LinePosition position);
    QColor backgroundColour() const;
    void setBackgroundColour(const QColor &colour);
    QColor lineColour() const;
    void setLineColour(const QColor &colour);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    LinePosition m_linePosition = East;
    QColor m_backgroundColour;
    QColor m_lineColour;
};
