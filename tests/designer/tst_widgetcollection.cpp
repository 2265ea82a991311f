#include <support/testcase.h>

#include <QBuffer>
#include <QFileInfo>
#include <QLayout>
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
    void newWidgetsLoadAsForms();

private:
    QList<QDesignerCustomWidgetInterface *> widgets();
    static std::unique_ptr<QWidget> load(const QString &form);

    QPluginLoader m_loader{QStringLiteral(PLUGIN_FILE)};
};

QList<QDesignerCustomWidgetInterface *> TestWidgetCollection::widgets()
{
    auto *const collection
        = qobject_cast<QDesignerCustomWidgetCollectionInterface *>(m_loader.instance());
    return collection ? collection->customWidgets() : QList<QDesignerCustomWidgetInterface *>();
}

std::unique_ptr<QWidget> TestWidgetCollection::load(const QString &form)
{
    QUiLoader loader;
    loader.clearPluginPaths();
    loader.addPluginPath(QFileInfo(QStringLiteral(PLUGIN_FILE)).path());
    QBuffer buffer;
    buffer.setData(form.toUtf8());
    return std::unique_ptr<QWidget>(loader.load(&buffer));
}

void TestWidgetCollection::everyWidgetOfTheBoxCanBeMade()
{
    QStringList names;
    const auto all = widgets();
    for (QDesignerCustomWidgetInterface *const custom : all) {
        names.append(custom->name());
        const std::unique_ptr<QWidget> widget(custom->createWidget(nullptr));
        QCOMPARE(QString::fromLatin1(widget->metaObject()->className()), custom->name());
        const QString header = QStringLiteral(LIBRARY_FOLDER "/") + custom->includeFile();
        QVERIFY2(QFileInfo::exists(header), qPrintable(header));
    }
    QCOMPARE(names.join(QLatin1Char(' ')),
             QStringLiteral("CloseButton DetailsWidget FadingPanel FixedHeightListWidget "
                            "FlatButton FlatCommandLinkButton SideBarWidget"));
}

void TestWidgetCollection::newWidgetsLoadAsForms()
{
    const auto all = widgets();
    for (QDesignerCustomWidgetInterface *const custom : all) {
        const auto widget = load(custom->domXml());
        QVERIFY2(widget, qPrintable(custom->domXml()));
        QCOMPARE(QString::fromLatin1(widget->metaObject()->className()), custom->name());
        if (custom->name() != QLatin1String("DetailsWidget"))
            continue;
        auto *const page = widget->findChild<QWidget *>(QStringLiteral("details"));
        QVERIFY(page);
        QVERIFY(page->isVisibleTo(widget.get()));
        QVERIFY(widget->layout()->indexOf(page) >= 0);
    }
}

QTEST_MAIN(TestWidgetCollection)

#include "tst_widgetcollection.moc"
