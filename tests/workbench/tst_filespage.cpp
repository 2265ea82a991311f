#include <support/faultyfolder.h>
#include <support/modalsteps.h>
#include <support/testcase.h>
#include <tul-util-gui/filedialog/filedialog.h>
#include <tul-util-gui/filedialog/remotefiledialog.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>
#include <tul-util-gui/filesystemmodel/remotesidebar.h>
#include <workbench/filerequests.h>
#include <workbench/filespage.h>

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>

namespace
{

QString q(const char *text)
{
    return QString::fromLatin1(text);
}

/// The page, over a remote machine with two files in "remote:/dir".
struct ShownPage {
    FaultyFolder far;
    FilesPage page;
    QTreeView *const view = page.findChild<QTreeView *>();
    RemoteFileSystemModel *const model = page.findChild<RemoteFileSystemModel *>();
    QSignalSpy faults{&page, &WorkbenchPage::failed};

    ShownPage()
    {
        far.make(q("dir/a"));
        far.make(q("dir/b"));
        page.goTo(q("remote:/dir"));
    }

    QString shown() const { return page.findChild<QLineEdit *>()->text(); }
    int rows() const { return model->rowCount(view->rootIndex()); }
    void select(const char *path) { view->setCurrentIndex(model->index(q(path))); }

    void trigger(const char *text)
    {
        for (QAction *const action : page.findChildren<QAction *>()) {
            if (action->text().remove(QLatin1Char('&')) == q(text))
                action->trigger();
        }
    }
    void answer(QMessageBox::StandardButton button)
    {
        auto *const box = page.findChild<QMessageBox *>();
        QVERIFY(box);
        QTest::mouseClick(box->button(button), Qt::LeftButton);
        QTRY_VERIFY(!page.findChild<QMessageBox *>());
    }
};

} // namespace

class TestFilesPage : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void placesAndActionsLeadToBothSides();
    void foldersAreMadeAndFilesRemovedAfterAQuestion();
    void requestsShowDialogsAndTheirAnswers();

private:
    QTemporaryDir m_settings;
};

void TestFilesPage::initTestCase()
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_settings.path());
}

void TestFilesPage::placesAndActionsLeadToBothSides()
{
    ShownPage shown;
    QTRY_COMPARE(shown.rows(), 2);
    shown.trigger("Up");
    QCOMPARE(shown.shown(), q("remote:"));
    shown.trigger("This Machine");
    QCOMPARE(shown.shown(), QDir::homePath());
    Q_EMIT shown.page.findChild<RemoteSidebar *>()->goToUrl(QUrl(q("file:")));
    QCOMPARE(shown.shown(), shown.model->myComputer().toString());
    shown.trigger("Up"); // there is nothing above
    shown.trigger("Remote Machine");
    QCOMPARE(shown.shown(), q("remote:"));
    shown.select("remote:/dir");
    Q_EMIT shown.view->activated(shown.view->currentIndex());
    QCOMPARE(shown.shown(), q("remote:/dir"));
    QCOMPARE(shown.faults.count(), 0);
    for (const char *const here : {"remote:/dir", ""}) {
        shown.page.goTo(q(here));
        shown.page.goTo(q("remote:/<b>none"));
        QVERIFY(shown.faults.takeFirst().first().toString().contains(q("remote:/<b>none")));
        QVERIFY(shown.faults.isEmpty());
    }
}

void TestFilesPage::foldersAreMadeAndFilesRemovedAfterAQuestion()
{
    ShownPage shown;
    QTRY_COMPARE(shown.rows(), 2);
    shown.trigger("New Folder");
    shown.trigger("New Folder");
    QVERIFY(QFileInfo(shown.far.local(q("dir/New Folder 2"))).isDir());
    QTRY_COMPARE(shown.rows(), 4);

    shown.select("remote:/dir/a");
    shown.trigger("Delete");
    shown.answer(QMessageBox::No);
    QVERIFY(QFile::exists(shown.far.local(q("dir/a"))));
    shown.trigger("Delete");
    shown.answer(QMessageBox::Yes);
    QVERIFY(!QFile::exists(shown.far.local(q("dir/a"))));
    QTRY_COMPARE(shown.rows(), 3);

    QVERIFY(shown.far.make(q("dir/c")) && QFile::remove(shown.far.local(q("dir/b"))));
    QVERIFY(shown.far.make(q("dir/d")));
    shown.trigger("Refresh"); // nothing watches the remote side
    QTRY_COMPARE(shown.rows(), 4);

    shown.far.broken = true;
    shown.select("remote:/dir/c");
    shown.page.removeSelected();
    shown.page.makeFolder();
    QCOMPARE(shown.faults.count(), 2);
}

void TestFilesPage::requestsShowDialogsAndTheirAnswers()
{
    ShownPage shown;
    FileDialog::setAllFilesLocal(false);
    auto *const requests = shown.page.findChild<FileRequests *>();
    const QList<QPushButton *> buttons = requests->findChildren<QPushButton *>();
    QCOMPARE(buttons.size(), 13);
    int remote = 0;
    const ModalSteps steps(QVector<ModalSteps::Step>(13, [&](QWidget *window) {
        auto *const dialog = qobject_cast<RemoteFileDialog *>(window);
        remote += dialog != nullptr;
        if (remote == 1 && dialog) {
            auto *const edit = dialog->findChild<QLineEdit *>(q("fileNameEdit"));
            edit->setText(q("/dir/a"));
            QTest::keyClick(edit, Qt::Key_Return);
        } else {
            QTest::keyClick(window, Qt::Key_Escape);
        }
    }));
    const auto answer = [&] { return requests->findChildren<QLabel *>().constLast()->text(); };
    for (QPushButton *const button : buttons) {
        button->click();
        QVERIFY2(answer().endsWith(remote == 1 ? q(" /dir/a") : q(" nothing")),
                 qPrintable(answer()));
        remote += remote == 1;
    }
    QCOMPARE(remote, 9 + 1);
    FileDialog::setAllFilesLocal(true);
}

QTEST_MAIN(TestFilesPage)
#include "tst_filespage.moc"
