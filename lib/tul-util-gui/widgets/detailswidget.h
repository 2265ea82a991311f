#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

#include <QWidget>

#include <memory>

class DetailsWidgetPrivate;

/// A collapsible panel: a summary bar, and below it details that can be shown and hidden.
///
/// Use it where a form has more settings than most users need, or a list has entries with much to
/// say. The bar holds, from left to right, an optional check box, a summary that may have links, an
/// optional tool widget and a details button. A line of additional summary can follow. A click on
/// the bar does what the button does. Whenever the panel changes it brings the layouts around it up
/// to date at once, so that docks and scroll areas follow without flicker.
///
/// With the check box in use the panel is for something that can be switched off: while it is
/// unchecked the details are hidden and the button and the tool widget are disabled. A click on the
/// summary then toggles the check box, and links in it cannot be clicked.
///
/// Screen readers see a group that is named by the summary and that is expanded or collapsed.
///
/// *Ownership*: the panel owns the widgets that are handed to it. The details widget is deleted
/// when another one takes its place, so do not replace it from one of its own signals. A replaced
/// tool widget stays in its place in the bar until the host deletes it. A slot of expanded() or
/// checked() that wants the panel gone calls deleteLater(): the toolkit's buttons still use
/// themselves after they have toggled.
///
/// *Errors*: a widget that contains the panel is refused as details or tool widget, with a warning.
///
/// *By design*: setState(Expanded) without a details widget is stored and announced, though nothing
/// shows. The details button keeps no state of its own: it is disabled when the panel or the check
/// box makes it so. Where the display has fewer than 16 bits of colour, which is asked once, at
/// construction, nothing is translucent.
class TUL_UTIL_GUI_EXPORT DetailsWidget : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString summaryText READ summaryText WRITE setSummaryText)
    Q_PROPERTY(
        QString additionalSummaryText READ additionalSummaryText WRITE setAdditionalSummaryText)
    Q_PROPERTY(bool useCheckBox READ useCheckBox WRITE setUseCheckBox)
    Q_PROPERTY(State state READ state WRITE setState)

public:
    enum State {
        Expanded = 0, ///< bar and details
        Collapsed = 1, ///< the bar alone
        NoSummary = 2 ///< the details alone
    };
    Q_ENUM(State)

    explicit DetailsWidget(QWidget *parent = nullptr);
    ~DetailsWidget() override;

    /// The text of the bar, plain or rich.
    QString summaryText() const;
    void setSummaryText(const QString &text);

    /// The text of the line below the bar, which shows only with a text.
    QString additionalSummaryText() const;
    void setAdditionalSummaryText(const QString &text);

    /// Gives the tool tip to both summaries and to the present tool widget.
    void setSummaryToolTip(const QString &text);

    /// Makes summary and check box bold or normal. By design: starts from the application's font
    /// and not from the present one, so that it undoes what a style sheet or host has set.
    void setSummaryFontBold(bool bold);

    /// Whether the bar has a check box; false at first.
    bool useCheckBox() const;
    void setUseCheckBox(bool use);

    /// The check box, also while it is not in use. Checking it expands the panel and unchecking it
    /// collapses it, as far as there are details and the button is enabled.
    bool isChecked() const;
    void setChecked(bool checked);
    bool checkBoxEnabled() const;
    void setCheckBoxEnabled(bool enabled);

    /// Sets the icon of the check box.
    void setIcon(const QIcon &icon);

    /// What is shown; Collapsed at first.
    State state() const;
    void setState(State state);

    /// Whether the details button can be used. The getter asks the button, which an unchecked check
    /// box and a disabled panel disable too. Disabling it collapses an expanded panel.
    bool detailButtonEnabled() const;
    void setDetailButtonEnabled(bool enabled);

    /// Whether the details button shows. By design: takes effect when something else changes, a
    /// text for example, so that several settings make one change on the screen.
    bool detailButtonVisible() const;
    void setDetailButtonVisible(bool visible);

    /// Sets the text of the details button, the same for both states or one for each.
    void setDetailButtonText(const QString &text);
    void setDetailButtonText(const QString &collapsedText, const QString &expandedText);

    /// Whether a click on the summary does what the details button does; true at first.
    bool toggleDetailsOnSummaryBarClicks() const;
    void setToggleDetailsOnSummaryBarClicks(bool toggle);

    /// The widget between summary and button. Null leaves a former one in its place.
    QWidget *toolWidget() const;
    void setToolWidget(QWidget *widget);

    /// The details, with `padding` pixels around them; a negative number stands for 6. Null leaves
    /// the panel with its bar alone: the button then only emits detailsClicked().
    QWidget *widget() const;
    Q_INVOKABLE void setWidget(QWidget *widget, int padding = -1);

Q_SIGNALS:
    /// Emitted when the check box is checked or unchecked.
    void checked(bool on);
    /// Emitted when the state has changed; true for Expanded only.
    void expanded(bool on);
    /// Emitted when a link of the summary is clicked.
    void linkActivated(const QString &link);
    /// Emitted when the details button is clicked, and when the summary of a panel without details
    /// is.
    void detailsClicked();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void enterEvent(QEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private Q_SLOTS:
    void setExpanded(bool expand);
    void summaryCheckBoxToggled(bool on);
    void on_labelBackgroundClicked();

private:
    const std::unique_ptr<DetailsWidgetPrivate> d;
};
