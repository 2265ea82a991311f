#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

#include <QPointer>
#include <QWidget>

class QGraphicsOpacityEffect;

/// A container whose whole content fades in and out, for example the tool widget of a panel that
/// shows its tools only under the pointer.
///
/// A new panel is fully transparent, and so is its background at any opacity. What cannot be seen
/// can still be clicked and takes the focus: hide or disable what must not.
///
/// *Units*: opacity from 0, nothing to be seen, to 1; values beyond count as the nearer one, and
/// one that is no number changes nothing.
///
/// *Ownership*: the opacity effect belongs to the panel. A host that sets another graphics effect
/// takes it away, and opacity is ignored from then on.
///
/// *By design*: where the display has fewer than 16 bits of colour, which is asked once, at
/// construction, nothing fades: the panel takes the new opacity at once.
class TUL_UTIL_GUI_EXPORT FadingPanel : public QWidget
{
    Q_OBJECT

public:
    explicit FadingPanel(QWidget *parent = nullptr);

    /// Changes the opacity to `value` within 200 ms. Replaces a fade that is under way.
    void fadeTo(float value);

    /// Sets the opacity at once. A fade that is under way goes on all the same, and ends where it
    /// was to end.
    void setOpacity(qreal value);

private:
    QPointer<QGraphicsOpacityEffect> m_opacityEffect;
    const bool m_animationEnabled;
};
