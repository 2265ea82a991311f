#pragma once

#include <tul-util-gui/widgets/detailswidget.h>

#include <QColor>

#include <functional>

class QCheckBox;
class QGridLayout;
class QVBoxLayout;

/// Shows one widget of the library: its name, a line on what to try, the widget at work, and the
/// knobs that change it. A card is a details widget itself and can be collapsed.
///
/// A knob applies its value when it is added, and again whenever the user changes it.
class WidgetCard : public DetailsWidget
{
    Q_OBJECT

public:
    WidgetCard(const QString &name, const QString &advice, QWidget *parent = nullptr);

    QString name() const { return m_name; }

    /// Puts the widget to show above the knobs, below those that were there before.
    void addDemo(QWidget *demo, Qt::Alignment alignment = Qt::Alignment());

    void addColour(const QString &label, const QColor &colour,
                   const std::function<void(const QColor &)> &apply);
    void addText(const QString &label, const QString &text,
                 const std::function<void(const QString &)> &apply);
    QCheckBox *addCheck(const QString &label, bool checked, const std::function<void(bool)> &apply);
    void addChoice(const QString &label, const QStringList &choices, int chosen,
                   const std::function<void(int)> &apply);

    /// A button does nothing until it is clicked.
    void addButton(const QString &text, const std::function<void()> &clicked);

Q_SIGNALS:
    /// Emitted when the widget that is shown, or one of its knobs, has something to tell.
    void told(const QString &text);

private:
    void addKnob(const QString &label, QWidget *knob);
    void addUnlabelled(QWidget *knob);

    const QString m_name;
    QVBoxLayout *m_demos;
    QGridLayout *m_knobs;
    int m_knobCount = 0;
};
