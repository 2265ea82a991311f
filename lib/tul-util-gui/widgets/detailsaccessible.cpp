#include <tul-util-gui/widgets/detailsaccessible_p.h>

#include <tul-util-gui/widgets/detailsbutton.h>
#include <tul-util-gui/widgets/detailswidget.h>

#include <QAccessible>
#include <QAccessibleWidget>
#include <QTextDocument>
#include <QTextDocumentFragment>

namespace
{

class AccessibleDetailsButton : public QAccessibleWidget
{
public:
    explicit AccessibleDetailsButton(DetailsButton *button)
        : QAccessibleWidget(button, QAccessible::Button)
        , m_button(button)
    {
    }

    QString text(QAccessible::Text kind) const override
    {
        const QString given = QAccessibleWidget::text(kind);
        return kind == QAccessible::Name && given.isEmpty() ? m_button->detailButtonText() : given;
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        const bool checkable = m_button->isCheckable();
        state.pressed = m_button->isDown();
        state.checkable = checkable;
        state.checked = m_button->isChecked();
        state.expandable = checkable;
        state.expanded = checkable && m_button->isChecked();
        state.collapsed = checkable && !m_button->isChecked();
        return state;
    }

    QStringList actionNames() const override
    {
        QStringList names = QAccessibleWidget::actionNames();
        if (m_button->isEnabled())
            names.prepend(mainAction());
        return names;
    }

    void doAction(const QString &name) override
    {
        if (name == mainAction())
            m_button->click();
        else
            QAccessibleWidget::doAction(name);
    }

private:
    QString mainAction() const { return m_button->isCheckable() ? toggleAction() : pressAction(); }

    DetailsButton *const m_button; // outlives this
};

class AccessibleDetailsWidget : public QAccessibleWidget
{
public:
    explicit AccessibleDetailsWidget(DetailsWidget *panel)
        : QAccessibleWidget(panel, QAccessible::Grouping)
        , m_panel(panel)
    {
    }

    QString text(QAccessible::Text kind) const override
    {
        const QString given = QAccessibleWidget::text(kind);
        return kind == QAccessible::Name && given.isEmpty() ? tul::plainText(m_panel->summaryText())
                                                            : given;
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        const bool expandable = m_panel->widget() && m_panel->state() != DetailsWidget::NoSummary;
        state.expandable = expandable;
        state.expanded = expandable && m_panel->state() == DetailsWidget::Expanded;
        state.collapsed = expandable && m_panel->state() == DetailsWidget::Collapsed;
        return state;
    }

private:
    DetailsWidget *const m_panel; // outlives this
};

QAccessibleInterface *makeInterface(const QString &className, QObject *object)
{
    if (className == QLatin1String("DetailsButton")) {
        if (auto *const button = qobject_cast<DetailsButton *>(object))
            return new AccessibleDetailsButton(button);
    } else if (className == QLatin1String("DetailsWidget")) {
        if (auto *const panel = qobject_cast<DetailsWidget *>(object))
            return new AccessibleDetailsWidget(panel);
    }
    return nullptr;
}

} // namespace

QString tul::plainText(const QString &text)
{
    return Qt::mightBeRichText(text) ? QTextDocumentFragment::fromHtml(text).toPlainText() : text;
}

void tul::installDetailsAccessibility()
{
    static const bool installed = [] {
        QAccessible::installFactory(&makeInterface);
        return true;
    }();
    Q_UNUSED(installed)
}

void tul::announceExpansion(QWidget *widget)
{
    QAccessible::State changed;
    changed.expanded = true;
    changed.collapsed = true;
    QAccessibleStateChangeEvent event(widget, changed);
    QAccessible::updateAccessibility(&event);
}
