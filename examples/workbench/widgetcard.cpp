#include <workbench/colourbox.h>
#include <workbench/widgetcard.h>

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace
{

constexpr int knobsInARow = 2; // each a label and what it names

} // namespace

WidgetCard::WidgetCard(const QString &name, const QString &advice, QWidget *parent)
    : DetailsWidget(parent)
    , m_name(name)
    , m_demos(new QVBoxLayout)
    , m_knobs(new QGridLayout)
{
    setObjectName(name);
    setSummaryText(QStringLiteral("<b>%1</b>").arg(name));
    setAdditionalSummaryText(advice);

    auto *const contents = new QWidget;
    auto *const layout = new QVBoxLayout(contents);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(m_demos);
    layout->addLayout(m_knobs);
    for (int column = 0; column < knobsInARow; ++column)
        m_knobs->setColumnStretch(2 * column + 1, 1);
    setWidget(contents);
    setState(Expanded);
}

void WidgetCard::addDemo(QWidget *demo, Qt::Alignment alignment)
{
    m_demos->addWidget(demo, 0, alignment);
}

void WidgetCard::addKnob(const QString &label, QWidget *knob)
{
    auto *const text = new QLabel(label);
    text->setBuddy(knob);
    knob->setAccessibleName(tr("%1: %2", "widget: knob").arg(m_name, label));
    const int row = m_knobCount / knobsInARow;
    const int column = 2 * (m_knobCount % knobsInARow);
    m_knobs->addWidget(text, row, column);
    m_knobs->addWidget(knob, row, column + 1);
    ++m_knobCount;
}

void WidgetCard::addUnlabelled(QWidget *knob)
{
    m_knobs->addWidget(knob, m_knobCount / knobsInARow, 2 * (m_knobCount % knobsInARow), 1, 2);
    ++m_knobCount;
}

void WidgetCard::addColour(const QString &label, const QColor &colour,
                           const std::function<void(const QColor &)> &apply)
{
    auto *const box = new ColourBox;
    box->setColour(colour);
    connect(box, &ColourBox::colourChanged, this, apply);
    addKnob(label, box);
    apply(colour);
}

void WidgetCard::addText(const QString &label, const QString &text,
                         const std::function<void(const QString &)> &apply)
{
    auto *const edit = new QLineEdit(text);
    edit->setCursorPosition(0);
    connect(edit, &QLineEdit::textChanged, this, apply);
    addKnob(label, edit);
    apply(text);
}

QCheckBox *WidgetCard::addCheck(const QString &label, bool checked,
                                const std::function<void(bool)> &apply)
{
    auto *const box = new QCheckBox(label);
    box->setChecked(checked);
    connect(box, &QCheckBox::toggled, this, apply);
    addUnlabelled(box);
    apply(checked);
    return box;
}

void WidgetCard::addChoice(const QString &label, const QStringList &choices, int chosen,
                           const std::function<void(int)> &apply)
{
    auto *const box = new QComboBox;
    box->addItems(choices);
    box->setCurrentIndex(chosen);
    connect(box, QOverload<int>::of(&QComboBox::currentIndexChanged), this, apply);
    addKnob(label, box);
    apply(chosen);
}

void WidgetCard::addButton(const QString &text, const std::function<void()> &clicked)
{
    auto *const button = new QPushButton(text);
    connect(button, &QPushButton::clicked, this, clicked);
    addUnlabelled(button);
}
