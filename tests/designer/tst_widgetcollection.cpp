#include <support/testcase.h>

#include <QBuffer>
#include <QFileInfo>
#include <QPluginLoader>
#include <QTest>
#include <QUiLoader>
#include <QWidget>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

#include <memory>

class TestWidgetCollection : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void everyWidgetOfTheBoxCanBeMade();
    void formsAreLoadedWithTheirContents_data();
    void formsAreLoadedWithTheirContents();
};

void TestWidgetCollection::everyWidgetOfTheBoxCanBeMade()
{
    QPluginLoader loader(QStringLiteral(PLUGIN_FILE));
    auto *const collection
        = qobject_cast<QDesignerCustomWidgetCollectionInterface *>(loader.instance());
    QVERIFY2(collection, qPrintable(loader.errorString()));
    QStringList names;
    QStringList containers;
    const auto widgets = collection->customWidgets();
    for (QDesignerCustomWidgetInterface *const custom : widgets) {
        names.append(custom->name());
        if (custom->isContainer())
            containers.append(custom->name());
        const std::unique_ptr<QWidget> widget(custom->createWidget(nullptr));
        QCOMPARE(QString::fromLatin1(widget->metaObject()->className()), custom->name());
        const QString header = QStringLiteral(LIBRARY_FOLDER "/") + custom->includeFile();
        QVERIFY2(QFileInfo::exists(header), qPrintable(header));
    }
    const QString offered = QStringLiteral("CloseButton DetailsWidget FadingPanel "
                                           "FixedHeightListWidget FlatButton "
                                           "FlatCommandLinkButton SideBarWidget");
    QCOMPARE(names.join(QLatin1Char(' ')), offered);
    QCOMPARE(containers.join(QLatin1Char(' ')),
             QStringLiteral("DetailsWidget FadingPanel SideBarWidget"));
}

void TestWidgetCollection::formsAreLoadedWithTheirContents_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("extra"); // elements inside that of the widget
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QVariant>("expected");
    const auto row
        = [](const char *name, const char *extra, const char *property, const QVariant &expected) {
              QTest::newRow(name) << QString::fromLatin1(name) << QString::fromLatin1(extra)
                                  << QByteArray(property) << expected;
          };
    row("SideBarWidget",
        "<property name=\"linePosition\"><enum>SideBarWidget::West</enum></property>"
        "<widget class=\"QWidget\" name=\"child\"/>",
        "linePosition", 2);
    row("FlatButton",
        "<property name=\"lineColour\"><color><red>255</red><green>0</green><blue>0</blue></color>"
        "</property>",
        "lineColour", QColor(Qt::red));
    row("DetailsWidget",
        "<property name=\"summaryText\"><string>More</string></property>"
        "<property name=\"state\"><enum>DetailsWidget::Expanded</enum></property>"
        "<widget class=\"QWidget\" name=\"child\"/>",
        "summaryText", QStringLiteral("More"));
}

void TestWidgetCollection::formsAreLoadedWithTheirContents()
{
    QFETCH(const QString, name);
    QFETCH(const QString, extra);
    QFETCH(const QByteArray, property);
    QFETCH(const QVariant, expected);
    QUiLoader loader;
    loader.clearPluginPaths();
    loader.addPluginPath(QFileInfo(QStringLiteral(PLUGIN_FILE)).path());
    QBuffer form;
    form.setData(
        QStringLiteral("<ui version=\"4.0\"><widget class=\"%1\" name=\"w\">%2</widget></ui>")
            .arg(name, extra)
            .toUtf8());
    const std::unique_ptr<QWidget> widget(loader.load(&form));
    QVERIFY2(widget, qPrintable(loader.errorString()));
    QCOMPARE(QString::fromLatin1(widget->metaObject()->className()), name);
    QCOMPARE(widget->property(property), expected);
    if (extra.contains(QLatin1String("child"))) {
        const auto *const child = widget->findChild<QWidget *>(QStringLiteral("child"));
        QVERIFY(child);
        widget->resize(300, 300);
        QVERIFY(child->isVisibleTo(widget.get()));
        if (widget->layout())
            QVERIFY(widget->layout()->indexOf(const_cast<QWidget *>(child)) >= 0);
    }
}

QTEST_MAIN(TestWidgetCollection)

#include "tst_widgetcollection.moc"
