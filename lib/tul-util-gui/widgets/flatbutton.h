#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

#include <QColor>
#include <QToolButton>

#include <memory>

namespace tul
{
struct FlatColours;
}

/// A tool button drawn flat: instead of the style's panel it shows a colour for its state and,
/// while it is pressed, hovered or checked, a rule of one pixel below. For rows of buttons that a
/// host colours as a whole, such as those that switch pages.
///
/// Every colour is unset at first, which is to say invalid, and an unset colour draws nothing. The
/// style draws only icon, text and focus frame.
///
/// | state, the first that fits           | colour                         | rule |
/// |--------------------------------------|--------------------------------|------|
/// | pressed under the mouse, not checked | pressed; if unset, as below    | yes  |
/// | pressed or checked                   | sunken                         | yes  |
/// | disabled                             | disabled; raised if it is unset| no   |
/// | under the mouse                      | hover; raised if it is unset   | yes  |
/// | any other                            | raised                         | no   |
///
/// *By design*: a click never checks or unchecks the button, nor does it trigger a default action;
/// the owner sets the checked state when it has seen clicked(). The setters of the colours do not
/// repaint: whoever changes them while the button is visible calls update() after the last one. The
/// rule ends at the width of the button area, not at its right edge.
class TUL_UTIL_GUI_EXPORT FlatButton : public QToolButton
{
    Q_OBJECT
    Q_PROPERTY(QColor sunkenColour READ sunkenColour WRITE setSunkenColour)
    Q_PROPERTY(QColor raisedColour READ raisedColour WRITE setRaisedColour)
    Q_PROPERTY(QColor hoverColour READ hoverColour WRITE setHoverColour)
    Q_PROPERTY(QColor pressedColour READ pressedColour WRITE setPressedColour)
    Q_PROPERTY(QColor disabledColour READ disabledColour WRITE setDisabledColour)
    Q_PROPERTY(QColor lineColour READ lineColour WRITE setLineColour)

public:
    explicit FlatButton(QWidget *parent = nullptr);
    ~FlatButton() override;

    /// The six colours: getters give copies, setters only store.
    QColor sunkenColour() const;
    void setSunkenColour(const QColor &colour);
    QColor raisedColour() const;
    void setRaisedColour(const QColor &colour);
    QColor hoverColour() const;
    void setHoverColour(const QColor &colour);
    QColor pressedColour() const;
    void setPressedColour(const QColor &colour);
    QColor disabledColour() const;
    void setDisabledColour(const QColor &colour);
    QColor lineColour() const;
    void setLineColour(const QColor &colour);

protected:
    void paintEvent(QPaintEvent *event) override;
    void nextCheckState() override;

private:
    const std::unique_ptr<tul::FlatColours> m_colours;
};
