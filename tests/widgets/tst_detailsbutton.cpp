#include <support/testcase.h>
#include <tul-util-gui/widgets/detailsbutton.h>
#include <tul-util-gui/widgets/detailsbuttonlook_p.h>

#include <QAccessible>
#include <QApplication>
#include <QPropertyAnimation>
#include <QTest>

#include <cmath>
#include <functional>
#include <limits>

class TestDetailsButton : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void textAndHintFollowTheTextsThatAreSet()
    {
        const struct {
            const char *collapsed, *expanded; // a checkable button is checked with a second text
            bool checkable;
            const char *text, *widest;
        } rows[] = {{"", "", false, "Details...", "Details..."},
                    {"", "", true, "Details", "Details"},
                    {"Show", "Hide it", false, "Show", "Hide it"},
                    {"Show", "", true, "Show...", "Show"},
                    {"Show me", "Hide", true, "Hide...", "Show me"}};
        const auto words = [](const char *text) { return QString::fromLatin1(text); };
        for (const auto &row : rows) {
            DetailsButton button;
            button.setCheckable(row.checkable);
            button.setChecked(*row.expanded);
            button.setDetailButtonText(words(row.collapsed), words(row.expanded));
            QCOMPARE(button.detailButtonText(), words(row.text));
            const int width = button.fontMetrics().horizontalAdvance(words(row.widest));
            QCOMPARE(button.sizeHint(), QSize(width + 32, 22));
            auto *const reader = QAccessible::queryAccessibleInterface(&button);
            QCOMPARE(reader->text(QAccessible::Name), words(row.text));
            QCOMPARE(bool(reader->state().expandable), row.checkable);
            QCOMPARE(bool(reader->state().expanded), button.isChecked());
            reader->actionInterface()->doAction(reader->actionInterface()->actionNames().at(0));
            QCOMPARE(bool(reader->state().collapsed), row.checkable && !button.isChecked());
        }
    }

    void picturePutsTheStatesOverEachOther()
    {
        QCOMPARE(tul::blended(QColor(255, 255, 255, 140), QColor(10, 100, 255)),
                 QColor(144, 185, 255));
        // Seen over the background: a layer of one grey after the other.
        const auto over = [](int grey, int alpha, int under) {
            return (grey * alpha + under * (255 - alpha)) / 255;
        };
        for (int flags = 0; flags < 64; ++flags) {
            tul::DetailsButtonLook look;
            look.size = QSize(101, 41);
            look.bounds = QRect(QPoint(), look.size);
            look.ratio = 2;
            look.background = QColor(60, 60, 60);
            look.style = QApplication::style();
            look.checked = flags & 1;
            look.down = flags & 2;
            look.hover = flags & 4;
            look.gradient = flags & 8;
            look.translucent = flags & 16;
            look.arrow = flags & 32;
            look.highlight = 90;
            const QImage image = tul::renderDetailsButton(look);
            QCOMPARE(image.size(), QSize(202, 82));
            const auto seen = [&](int x) {
                const QColor pixel = image.pixelColor(x, 40);
                return over(pixel.red(), pixel.alpha(), 60);
            };
            const int hovered = look.hover ? over(255, 90, 60) : 60;
            const int pressed = look.down ? over(0, 20, hovered) : hovered;
            const int under = look.translucent ? pressed : hovered; // opaque panels hide the press
            const int panel = look.checked ? over(255, 25, under) : over(0, 13, under);
            const int centre = look.gradient ? panel : pressed;
            QVERIFY2(std::abs(seen(101) - centre) <= 2, qPrintable(QString::number(flags)));
            QVERIFY(seen(0) < seen(3)); // dark line and light frame at the left
            QCOMPARE(std::abs(seen(175) - centre) > 20, look.arrow);
        }
    }

    void whateverChangesIsPaintedAtOnce()
    {
        QFont font;
        font.setItalic(true);
        const float infinity = std::numeric_limits<float>::infinity();
        const QVector<std::function<void(DetailsButton &)>> changes{
            [](DetailsButton &button) { button.setDetailButtonText(QStringLiteral("A"), {}); },
            [](DetailsButton &button) { button.setCheckable(true); },
            [](DetailsButton &button) { button.setDown(true); },
            [](DetailsButton &button) { button.setEnabled(false); },
            [=](DetailsButton &button) { button.setFader(infinity); },
            [=](DetailsButton &button) { button.setFont(font); },
            [](DetailsButton &button) { button.setPalette(Qt::black); },
            [](DetailsButton &button) { button.setContentsMargins(3, 0, 0, 0); },
            [](DetailsButton &button) { button.setContentsMargins(500, 0, 500, 0); }, // no room
        };
        for (const auto &change : changes) {
            DetailsButton fresh, painted;
            fresh.resize(100, 22);
            painted.resize(100, 22);
            painted.setFader(std::nanf("")); // nothing to be seen
            const QImage before = painted.grab().toImage();
            change(fresh);
            change(painted);
            QCOMPARE(painted.grab().toImage(), fresh.grab().toImage());
            QVERIFY(painted.grab().toImage() != before);
        }
    }

    void pointerFadesTheHighlightInAndOut()
    {
        DetailsButton button;
        QEvent enter(QEvent::Enter);
        QEvent leave(QEvent::Leave);
        QVERIFY(!QCoreApplication::sendEvent(&button, &enter));
        QVERIFY(button.fader() < 1);
        QTRY_COMPARE(button.fader(), 1.0F);
        for (QEvent *const event : {&leave, &enter, &leave})
            QVERIFY(!QCoreApplication::sendEvent(&button, event));
        QTRY_VERIFY(button.findChildren<QPropertyAnimation *>().isEmpty());
        QCOMPARE(button.fader(), 0.0F);
    }
};

QTEST_MAIN(TestDetailsButton)
#include "tst_detailsbutton.moc"
