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
    void textAndHintFollowTheTextsThatAreSet();
    void picturePutsTheStatesOverEachOther();
    void whateverChangesIsPaintedAtOnce();
    void pointerFadesTheHighlightInAndOut();
    void screenReaderIsToldTheTextAndWhetherItIsExpanded();
};

void TestDetailsButton::textAndHintFollowTheTextsThatAreSet()
{
    struct Case {
        const char *collapsed, *expanded;
        bool checkable, checked;
        const char *text, *widest;
    };
    for (const Case &row : {Case{"", "", false, false, "Details...", "Details..."},
                            Case{"", "", true, true, "Details", "Details"},
                            Case{"Show", "Hide it", false, false, "Show", "Hide it"},
                            Case{"Show", "Hide it", true, false, "Show...", "Hide it"},
                            Case{"Show me", "Hide", true, true, "Hide...", "Show me"},
                            Case{"Show", "", true, true, "...", "Show"}}) {
        DetailsButton button;
        QCOMPARE(button.text(), QStringLiteral("Details..."));
        button.setCheckable(row.checkable);
        button.setChecked(row.checked);
        button.setDetailButtonText(QString::fromLatin1(row.collapsed),
                                   QString::fromLatin1(row.expanded));
        QCOMPARE(button.detailButtonText(), QString::fromLatin1(row.text));
        const QString widest = QString::fromLatin1(row.widest);
        QCOMPARE(button.sizeHint(), QSize(button.fontMetrics().horizontalAdvance(widest) + 32, 22));
    }
}

void TestDetailsButton::picturePutsTheStatesOverEachOther()
{
    QCOMPARE(tul::blended(QColor(255, 255, 255, 140), QColor(10, 100, 255)), QColor(144, 185, 255));
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

        // Half way down the panel, seen over the background: a layer of one grey after the other.
        const auto over = [](int grey, int alpha, qreal under) {
            return (grey * alpha + under * (255 - alpha)) / 255;
        };
        const qreal hovered = look.hover ? over(255, 90, 60) : 60;
        const qreal pressed = look.down ? over(0, 20, hovered) : hovered;
        const qreal under = look.translucent ? pressed : hovered; // an opaque panel hides the press
        const qreal expected = !look.gradient ? pressed
            : look.checked                    ? over(255, 25, under)
                                              : over(0, 13, under);
        const auto seen = [&](int x, int y) {
            const QColor pixel = image.pixelColor(x, y);
            return over(pixel.red(), pixel.alpha(), 60);
        };
        QVERIFY2(std::abs(seen(101, 40) - expected) <= 2, qPrintable(QString::number(flags)));
        QVERIFY(seen(0, 40) < seen(3, 40)); // dark line and light frame at the left
        const qreal line = over(0, 40, look.translucent ? 60 : hovered);
        QCOMPARE(std::abs(seen(100, 81) - line) <= 2, look.checked); // and a line below
        bool hasArrow = false;
        for (int y = 30; y < 50; ++y)
            hasArrow = hasArrow || std::abs(seen(175, y) - expected) > 20;
        QCOMPARE(hasArrow, look.arrow);
    }
}

void TestDetailsButton::whateverChangesIsPaintedAtOnce()
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
        [](DetailsButton &button) { button.resize(110, 22); },
        [](DetailsButton &button) { button.setContentsMargins(3, 0, 0, 0); },
    };
    const auto picture = [](DetailsButton &button) { return button.grab().toImage(); };
    for (const auto &change : changes) {
        DetailsButton fresh, painted;
        fresh.resize(100, 22);
        painted.resize(100, 22);
        const QImage before = picture(painted);
        change(fresh);
        change(painted);
        QCOMPARE(picture(painted), picture(fresh));
        QVERIFY(picture(painted) != before);
    }
    DetailsButton button;
    const QImage before = picture(button);
    for (const float level : {-infinity, -1.0F, std::nanf("")}) {
        button.setFader(level);
        QCOMPARE(picture(button), before);
    }
    button.setContentsMargins(500, 0, 500, 0);
    picture(button); // with no room there is nothing to warn of
}

void TestDetailsButton::pointerFadesTheHighlightInAndOut()
{
    DetailsButton button;
    QEvent enter(QEvent::Enter);
    QEvent leave(QEvent::Leave);
    QVERIFY(!QCoreApplication::sendEvent(&button, &enter));
    QVERIFY(button.fader() < 1);
    QTRY_COMPARE(button.fader(), 1.0F);
    QVERIFY(!QCoreApplication::sendEvent(&button, &leave));
    QCoreApplication::sendEvent(&button, &enter);
    QCoreApplication::sendEvent(&button, &leave);
    QTRY_VERIFY(button.findChildren<QPropertyAnimation *>().isEmpty());
    QCOMPARE(button.fader(), 0.0F);
}

void TestDetailsButton::screenReaderIsToldTheTextAndWhetherItIsExpanded()
{
    DetailsButton button;
    QAccessibleInterface *const accessible = QAccessible::queryAccessibleInterface(&button);
    QCOMPARE(accessible->role(), QAccessible::Button);
    QVERIFY(!accessible->state().expandable);
    button.setCheckable(true);
    button.setDetailButtonText(QStringLiteral("Show"), QStringLiteral("Hide"));
    QVERIFY(accessible->state().expandable && accessible->state().collapsed);
    QCOMPARE(accessible->text(QAccessible::Name), QStringLiteral("Show..."));
    accessible->actionInterface()->doAction(
        accessible->actionInterface()->actionNames().constFirst());
    QVERIFY(accessible->state().expanded && !accessible->state().collapsed);
    QCOMPARE(accessible->text(QAccessible::Name), QStringLiteral("Hide..."));
}

QTEST_MAIN(TestDetailsButton)

#include "tst_detailsbutton.moc"
