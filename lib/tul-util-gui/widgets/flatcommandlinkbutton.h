#pragma once

#include <tul-util-gui/tul_util_gui_export.h>
#include <tul-util-gui/widgets/widercommandlinkbutton.h>

#include <QColor>

#include <memory>

class FlatCommandLinkButtonPrivate;

/// A command-link button drawn flat: a bold title above a description, with the icon on the left,
/// upon a colour for its state and, while it is pressed, hovered or checked, a rule of one pixel at
/// the bottom. For the choices of a start page that a host colours as a whole.
///
/// Every colour is unset at first, which is to say invalid. The colour of the state is chosen as by
/// FlatButton: an unset one draws nothing, an unset title or description colour leaves that of the
/// palette. Margins are fixed and texts have 9 points, whatever size the font has. No focus frame
/// is drawn: a host whose users reach the button with the keyboard gives it another sign of the
/// focus.
///
/// *By design*: a click never checks or unchecks the button; the owner sets the checked state when
/// it has seen clicked(). The setters of the colours do not repaint: whoever changes them while the
/// button is visible calls update() after the last one. When only the title has a colour, the
/// description takes it too. The icon stays on the left in right-to-left layouts.
class TUL_UTIL_GUI_EXPORT FlatCommandLinkButton : public WiderCommandLinkButton
{
    Q_OBJECT
    Q_PROPERTY(QColor sunkenColour READ sunkenColour WRITE setSunkenColour)
    Q_PROPERTY(QColor raisedColour READ raisedColour WRITE setRaisedColour)
    Q_PROPERTY(QColor hoverColour READ hoverColour WRITE setHoverColour)
    Q_PROPERTY(QColor pressedColour READ pressedColour WRITE setPressedColour)
    Q_PROPERTY(QColor disabledColour READ disabledColour WRITE setDisabledColour)
    Q_PROPERTY(QColor lineColour READ lineColour WRITE setLineColour)
    Q_PROPERTY(QColor titleColour READ titleColour WRITE setTitleColour)
    Q_PROPERTY(QColor descriptionColour READ descriptionColour WRITE setDescriptionColour)

public:
    explicit FlatCommandLinkButton(QWidget *parent = nullptr);
    ~FlatCommandLinkButton() override;

    /// The colours of the states: getters give copies, setters only store.
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

    /// The colours of the texts, likewise.
    QColor titleColour() const;
    void setTitleColour(const QColor &colour);
    QColor descriptionColour() const;
    void setDescriptionColour(const QColor &colour);

protected:
    void paintEvent(QPaintEvent *event) override;
    void nextCheckState() override;

private:
    // Painting goes by these; pixels within the widget.
    QFont titleFont() const;
    QFont descriptionFont() const;
    QRect titleRect() const;
    QRect descriptionRect() const;
    QSize iconExtent() const;
    int textOffset() const;
    int descriptionOffset() const;
    static constexpr int topMargin() { return 10; }
    static constexpr int bottomMargin() { return 5; }
    static constexpr int leftMargin() { return 7; }
    static constexpr int rightMargin() { return 4; }

    const std::unique_ptr<FlatCommandLinkButtonPrivate> d;
};
