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
    void everyWidgetOfTheBoxIsMadeAndLoadedAsAForm();
};

void TestWidgetCollection::everyWidgetOfTheBoxIsMadeAndLoadedAsAForm()
{
    QPluginLoader plugin(QStringLiteral(PLUGIN_FILE));
    const auto *const collection
        = qobject_cast<QDesignerCustomWidgetCollectionInterface *>(plugin.instance());
    QVERIFY2(collection, qPrintable(plugin.errorString()));
    QStringList names;
    const auto all = collection->customWidgets();
    for (QDesignerCustomWidgetInterface *const custom : all) {
        names.append(custom->name());
        const std::unique_ptr<QWidget> made(custom->createWidget(nullptr));
        QCOMPARE(QString::fromLatin1(made->metaObject()->className()), custom->name());
        const QString header = QStringLiteral(LIBRARY_FOLDER "/") + custom->includeFile();
        QVERIFY2(QFileInfo::exists(header), qPrintable(header));

        QUiLoader loader;
        loader.clearPluginPaths();
        loader.addPluginPath(QFileInfo(QStringLiteral(PLUGIN_FILE)).path());
        QBuffer buffer;
        buffer.setData(custom->domXml().toUtf8());
        const std::unique_ptr<QWidget> loaded(loader.load(&buffer));
        QVERIFY2(loaded, qPrintable(custom->domXml()));
        QCOMPARE(QString::fromLatin1(loaded->metaObject()->className()), custom->name());
        if (custom->name() != QLatin1String("DetailsWidget"))
            continue;
        auto *const page = loaded->findChild<QWidget *>(QStringLiteral("details"));
        QVERIFY(page && page->isVisibleTo(loaded.get()));
        QVERIFY(loaded->layout()->indexOf(page) >= 0);
    }
    QCOMPARE(names.join(QLatin1Char(' ')),
             QStringLiteral("CloseButton DetailsWidget FadingPanel FixedHeightListWidget "
                            "FlatButton FlatCommandLinkButton SideBarWidget"));
}

QTEST_MAIN(TestWidgetCollection)

#include "tst_widgetcollection.moc"
