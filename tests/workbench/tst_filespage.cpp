#include <support/faultyfolder.h>
#include <support/literal.h>
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

/// The page, over a remote machine with two files in "remote:/dir".
struct ShownPage {
    const QTemporaryDir settings;
    FaultyFolder far;
    FilesPage page;
    QTreeView *const view = page.findChild<QTreeView *>();
    RemoteFileSystemModel *const model = page.findChild<RemoteFileSystemModel *>();
    QSignalSpy faults{&page, &WorkbenchPage::failed};

    ShownPage()
    {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
        far.make("dir/a"_s);
        far.make("dir/b"_s);
        page.goTo("remote:/dir"_s);
    }

    QString shown() const { return page.findChild<QLineEdit *>()->text(); }
    int rows() const { return model->rowCount(view->rootIndex()); }
    void select(const QString &path) { view->setCurrentIndex(model->index(path)); }

    void trigger(const QString &text)
    {
        const auto actions = page.findChildren<QAction *>();
        for (QAction *const action : actions) {
            if (action->text().remove(QLatin1Char('&')) == text)
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
    void placesAndActionsLeadToBothSides()
    {
        ShownPage shown;
        QTRY_COMPARE(shown.rows(), 2);
        shown.trigger("Up"_s);
        QCOMPARE(shown.shown(), "remote:"_s);
        shown.trigger("This Machine"_s);
        QCOMPARE(shown.shown(), QDir::homePath());
        Q_EMIT shown.page.findChild<RemoteSidebar *>()->goToUrl(QUrl("file:"_s));
        QCOMPARE(shown.shown(), shown.model->myComputer().toString());
        shown.trigger("Up"_s); // there is nothing above
        shown.trigger("Remote Machine"_s);
        QCOMPARE(shown.shown(), "remote:"_s);
        shown.select("remote:/dir"_s);
        Q_EMIT shown.view->activated(shown.view->currentIndex());
        QCOMPARE(shown.shown(), "remote:/dir"_s);
        QCOMPARE(shown.faults.count(), 0);
        for (const QString &here : {"remote:/dir"_s, QString()}) {
            shown.page.goTo(here);
            shown.page.goTo("remote:/<b>none"_s);
            QVERIFY(shown.faults.takeFirst().constFirst().toString().contains("remote:/<b>none"_s));
            QVERIFY(shown.faults.isEmpty());
        }
    }

    void foldersAreMadeAndFilesRemovedAfterAQuestion()
    {
        ShownPage shown;
        QTRY_COMPARE(shown.rows(), 2);
        shown.trigger("New Folder"_s);
        shown.trigger("New Folder"_s);
        QVERIFY(QFileInfo(shown.far.local("dir/New Folder 2"_s)).isDir());
        QTRY_COMPARE(shown.rows(), 4);

        shown.select("remote:/dir/a"_s);
        shown.trigger("Delete"_s);
        shown.answer(QMessageBox::No);
        QVERIFY(QFile::exists(shown.far.local("dir/a"_s)));
        shown.trigger("Delete"_s);
        shown.answer(QMessageBox::Yes);
        QVERIFY(!QFile::exists(shown.far.local("dir/a"_s)));
        QTRY_COMPARE(shown.rows(), 3);

        QVERIFY(shown.far.make("dir/c"_s) && QFile::remove(shown.far.local("dir/b"_s)));
        QVERIFY(shown.far.make("dir/d"_s));
        shown.trigger("Refresh"_s); // nothing watches the remote side
        QTRY_COMPARE(shown.rows(), 4);

        shown.far.broken = true;
        shown.select("remote:/dir/c"_s);
        shown.page.removeSelected();
        shown.page.makeFolder();
        QCOMPARE(shown.faults.count(), 2);
    }

    void requestsShowDialogsAndTheirAnswers()
    {
        ShownPage shown;
        FileDialog::setAllFilesLocal(false);
        auto *const requests = shown.page.findChild<FileRequests *>();
        const QList<QPushButton *> buttons = requests->findChildren<QPushButton *>();
        QCOMPARE(buttons.size(), 13);
        int remote = 0;
        const ModalSteps steps(QVector<ModalSteps::Step>(13, [&](QWidget *window) {
            const bool isFirst = qobject_cast<RemoteFileDialog *>(window) && remote++ == 0;
            auto *const edit = window->findChild<QLineEdit *>("fileNameEdit"_s);
            if (isFirst)
                edit->setText("/dir/a"_s);
            QTest::keyClick(isFirst ? edit : window, isFirst ? Qt::Key_Return : Qt::Key_Escape);
        }));
        QStringList answers;
        for (QPushButton *const button : buttons) {
            button->click();
            answers += requests->findChildren<QLabel *>().constLast()->text();
        }
        QCOMPARE(remote, 9);
        QCOMPARE(answers.filter(" /dir/a"_s).size(), 1);
        QCOMPARE(answers.filter(" nothing"_s).size(), 12);
        FileDialog::setAllFilesLocal(true);
    }
};

QTEST_MAIN(TestFilesPage)
#include "tst_filespage.moc"
