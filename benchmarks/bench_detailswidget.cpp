// The details panel beside a plain widget whose content is shown and hidden, in the same run: the
// same form in the same scroll area, below a label and a button. And a frame of the details
// button's fading beside the least that such a frame can be, one fill and one pixmap.

#include <tul-util-gui/widgets/detailsbutton.h>
#include <tul-util-gui/widgets/detailswidget.h>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace
{

QWidget *newForm(int fields)
{
    auto *const form = new QWidget;
    auto *const layout = new QFormLayout(form);
    for (int i = 0; i < fields; ++i)
        layout->addRow(QStringLiteral("Field %1").arg(i), new QLineEdit);
    return form;
}

/// Shows `panel` in a scroll area of 800 x 600, which is painted from then on or not.
void showInArea(QScrollArea &area, QWidget *panel, bool painted)
{
    auto *const content = new QWidget;
    auto *const layout = new QVBoxLayout(content);
    layout->addWidget(panel);
    layout->addStretch();
    area.setWidget(content);
    area.setWidgetResizable(true);
    area.resize(800, 600);
    area.show();
    area.setUpdatesEnabled(painted);
    QApplication::processEvents();
}

/// Delivers all events. A round of events gets to the next widget outwards: of panel, content, area
/// and its scroll bars.
void settle(const QScrollArea &area)
{
    for (int round = 0; round < 5; ++round)
        QApplication::processEvents();
    benchmark::DoNotOptimize(area.widget()->height());
}

/// Arguments: the fields of the form, and whether each toggle is painted.
void toggleDetailsWidget(benchmark::State &state)
{
    QScrollArea area;
    auto *const panel = new DetailsWidget;
    panel->setSummaryText(QStringLiteral("Summary"));
    panel->setWidget(newForm(static_cast<int>(state.range(0))));
    showInArea(area, panel, state.range(1));
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        panel->setState(panel->state() == DetailsWidget::Expanded ? DetailsWidget::Collapsed
                                                                  : DetailsWidget::Expanded);
        settle(area);
    }
}

void togglePlainContent(benchmark::State &state)
{
    QScrollArea area;
    auto *const panel = new QWidget;
    auto *const layout = new QGridLayout(panel);
    auto *const form = newForm(static_cast<int>(state.range(0)));
    layout->addWidget(new QLabel(QStringLiteral("Summary")), 0, 0);
    layout->addWidget(new QPushButton(QStringLiteral("Details")), 0, 1);
    layout->addWidget(form, 1, 0, 1, 2);
    showInArea(area, panel, state.range(1));
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        form->setVisible(form->isHidden());
        settle(area);
    }
}

/// Argument: whether the button paints, or by hand what its frame must at least paint.
void fadeFrame(benchmark::State &state)
{
    QPixmap target(200, 22);
    target.fill(Qt::gray);
    QPixmap pixmap(target.size());
    pixmap.fill(QColor(0, 0, 0, 16));
    DetailsButton button;
    button.resize(target.size());
    const QRect inner = button.rect().adjusted(1, 1, -2, -2);
    float level = 0;
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        level = level < 1 ? level + 0.01F : 0;
        if (state.range(0)) {
            button.setFader(level);
            button.render(&target, QPoint(), QRegion(), {});
        } else {
            QPainter painter(&target);
            painter.fillRect(inner, QColor(255, 255, 255, static_cast<int>(level * 180)));
            painter.drawPixmap(0, 0, pixmap);
        }
    }
}

BENCHMARK(toggleDetailsWidget)->ArgsProduct({{5, 50}, {1, 0}})->Iterations(1000);
BENCHMARK(togglePlainContent)->ArgsProduct({{5, 50}, {1, 0}})->Iterations(1000);
BENCHMARK(fadeFrame)->Arg(1)->Arg(0);

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
