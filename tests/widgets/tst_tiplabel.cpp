#include <support/testcase.h>
#include <tul-util-gui/widgets/tiplabel.h>

#include <QApplication>
#include <QTest>
#include <QToolTip>

#include <algorithm>

class TestTipLabel : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void looksAsTheToolTipOfTheToolkit()
    {
        QFont font(QStringLiteral("DejaVu Sans"));
        font.setPixelSize(12);
        QToolTip::setFont(font);
        QApplication::setFont(font); // that of the tip goes by the name of its class
        QPalette palette = QToolTip::palette();
        palette.setColor(QPalette::ToolTipBase, Qt::yellow);
        QToolTip::setPalette(palette);

        for (const char *const words : {"Two words", "Two\nlines", "<b>Bold</b> and <i>not</i>"}) {
            const QString text = QString::fromLatin1(words);
            QWidget parent;
            QToolTip::showText(QPoint(10, 10), text, &parent);
            const auto windows = QApplication::topLevelWidgets();
            const auto tip = std::find_if(windows.begin(), windows.end(), [&](QWidget *window) {
                const auto *const label = qobject_cast<QLabel *>(window);
                return label && label->isVisible() && label->text() == text;
            });
            QVERIFY(tip != windows.end());
            const auto *const theirs = static_cast<const QLabel *>(*tip);

            const TipLabel ours(text, &parent);
            QCOMPARE(ours.wordWrap(), *words == '<');
            QCOMPARE(ours.windowFlags(), theirs->windowFlags());
            for (const char *const name : {"size", "margin", "indent", "alignment", "frameShape",
                                           "frameShadow", "windowOpacity", "mouseTracking"})
                QCOMPARE(ours.property(name), theirs->property(name));
            QCOMPARE(ours.palette().color(ours.backgroundRole()), QColor(Qt::yellow));
            QCOMPARE(ours.foregroundRole(), theirs->foregroundRole());
        }
    }
};

QTEST_MAIN(TestTipLabel)

#include "tst_tiplabel.moc"
