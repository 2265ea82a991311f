#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

#include <QAbstractButton>

#include <memory>

class DetailsButtonPrivate;

/// A flat button that shows and hides details, or opens them elsewhere.
///
/// It is a soft rounded panel which brightens while the pointer is over it. Use it alone with
/// clicked(), or checkable with toggled(); DetailsWidget brings one along. The text is that of
/// setDetailButtonText(); QAbstractButton::text() plays no part. Screen readers get the shown text
/// and, from a checkable button, whether it is expanded.
///
/// Each size and state is rendered once and then kept; it is rendered again only when it is to be
/// painted with another text, font, colour, style, margin or device pixel ratio. So a frame of the
/// fading costs one fill and one pixmap.
///
/// *By design*: where the display has fewer than 16 bits of colour, which is asked once, at
/// construction, nothing is translucent and nothing fades. Enter and leave events do not reach the
/// base class.
class TUL_UTIL_GUI_EXPORT DetailsButton : public QAbstractButton
{
    Q_OBJECT
    Q_PROPERTY(float fader READ fader WRITE setFader)

public:
    explicit DetailsButton(QWidget *parent = nullptr);
    ~DetailsButton() override;

    /// The strength of the highlight from 0 to 1, normally driven by the button itself. Beyond
    /// these it paints like the nearer one. Each writing repaints.
    float fader() const;
    void setFader(float level);

    /// Sets the texts for the button when it is unchecked and when it is checked. Two empty ones
    /// bring back the default.
    void setDetailButtonText(const QString &collapsedText, const QString &expandedText);

    /// The text shown: one of the two above, with "..." when the button is checkable. By default
    /// "Details", with "..." when it is not.
    QString detailButtonText() const;

    /// Room for the wider of the texts. By design: without the "..." of a checkable button, and
    /// 22 pixels high whatever the font.
    QSize sizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    const std::unique_ptr<DetailsButtonPrivate> d;
};
