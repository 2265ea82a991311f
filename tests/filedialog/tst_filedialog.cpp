#include <tul-util-gui/filedialog/executablefileiconprovider_p.h>
#include <tul-util-gui/filedialog/filedialog.h>
#include <tul-util-gui/filedialog/filedialog_p.h>
#include <tul-util-gui/filedialog/remotefiledialog.h>

#include <backends/folder/folderengine.h>
#include <support/modalsteps.h>
#include <support/testcase.h>

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

using Request = std::function<QString(const QString &caption, const QString &dir)>;
Q_DECLARE_METATYPE(Request)

namespace
{

/// Puts in a name, as by pasting, which brings up no completions, and clicks on Open, Save or
/// Choose.
void enter(QWidget *dialog, const QString &name)
{
    dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"))->setText(name);
    auto *const buttons = dialog->findChild<QDialogButtonBox *>(QStringLiteral("buttonBox"));
    QTest::mouseClick(buttons->buttons().constFirst(), Qt::LeftButton);
}

template<class Dialog> ModalSteps::Step entering(const QString &name)
{
    return ModalSteps::with<Dialog>([name](Dialog *dialog) { enter(dialog, name); });
}

/// The toolkit calls its own edit by this name too.
ModalSteps::Step enteringLocally(const QString &name)
{
    return entering<QFileDialog>(name);
}

ModalSteps::Step pressing(QMessageBox::StandardButton button, QString *text)
{
    return ModalSteps::with<QMessageBox>([button, text](QMessageBox *box) {
        *text = box->text();
        QTest::mouseClick(box->button(button), Qt::LeftButton);
    });
}

void cancel(QWidget *window)
{
    QTest::keyClick(window, Qt::Key_Escape);
}

} // namespace

class TestFileDialog : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void captionTellsThePurpose_data();
    void captionTellsThePurpose();
    void suffixIsAddedUnlessItIsThere_data();
    void suffixIsAddedUnlessItIsThere();
    void flagsChooseTheSide_data();
    void flagsChooseTheSide();
    void nextRequestStartsWhereThePurposeEnded_data();
    void nextRequestStartsWhereThePurposeEnded();
    void cancellingGivesNothingAndForgetsNothing();
    void refusingToReplaceAsksAgain();
    void remoteSaveFollowsTheFilter();
    void parentGoesWhileTheDialogIsUp();
    void executablePickerNarrowsItsList_data();
    void executablePickerNarrowsItsList();
    void programsHaveAPictureOfTheirOwn();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    void makeFile(const QString &name, bool executable = false) const;

    QTemporaryDir m_settings;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<FolderEngine> m_engine;
};

void TestFileDialog::initTestCase()
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_settings.path());
}

void TestFileDialog::init()
{
    TestCase::init();
    m_folder = std::make_unique<QTemporaryDir>();
    m_engine = std::make_unique<FolderEngine>(m_folder->path());
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("one/deep")));
    makeFile(QStringLiteral("one/a.txt"));
    makeFile(QStringLiteral("one/b.txt"));
    makeFile(QStringLiteral("one/tool"), true);
    FileDialog::setAllFilesLocal(true);
    FileDialog::setSourcesLocal(false);
}

void TestFileDialog::cleanup()
{
    m_engine.reset();
    m_folder.reset();
    TestCase::cleanup();
}

void TestFileDialog::makeFile(const QString &name, bool executable) const
{
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    if (executable)
        QVERIFY(file.setPermissions(file.permissions() | QFile::ExeOwner | QFile::ExeUser));
}

void TestFileDialog::captionTellsThePurpose_data()
{
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("key");
    QTest::newRow("open") << "Open Core File"
                          << "core file";
    QTest::newRow("choose") << "Choose core file"
                            << "core file";
    QTest::newRow("the verbs in their order") << "Choose Save Open x"
                                              << "x";
    QTest::newRow("not in another order") << "Open Save x"
                                          << "save x";
    QTest::newRow("case of the verb counts") << "open File"
                                             << "open file";
    QTest::newRow("a verb alone") << "Open"
                                  << "open";
    QTest::newRow("nothing") << QString() << QString();
}

void TestFileDialog::captionTellsThePurpose()
{
    QFETCH(const QString, caption);
    QTEST(tul::purposeKey(caption), "key");
}

void TestFileDialog::suffixIsAddedUnlessItIsThere_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QString>("fileName");
    QTest::newRow("none asked for") << "/a/x" << QString() << "/a/x";
    QTest::newRow("added") << "/a/x"
                           << "txt"
                           << "/a/x.txt";
    QTest::newRow("added to another one") << "/a/notes.md"
                                          << "txt"
                                          << "/a/notes.md.txt";
    QTest::newRow("there") << "/a/notes.txt"
                           << "txt"
                           << "/a/notes.txt";
    QTest::newRow("case counts") << "/a/notes.TXT"
                                 << "txt"
                                 << "/a/notes.TXT.txt";
    QTest::newRow("of two parts") << "/a/x.tar.gz"
                                  << "tar.gz"
                                  << "/a/x.tar.gz";
}

void TestFileDialog::suffixIsAddedUnlessItIsThere()
{
    QFETCH(const QString, answer);
    QFETCH(const QString, suffix);
    QTEST(tul::withSuffix(answer, suffix), "fileName");
}

void TestFileDialog::flagsChooseTheSide_data()
{
    QTest::addColumn<bool>("allFilesLocal");
    QTest::addColumn<bool>("sourcesLocal");
    QTest::addColumn<bool>("filesRemote");
    QTest::addColumn<bool>("sourcesRemote");
    QTest::newRow("at first") << true << false << false << false;
    QTest::newRow("all remote") << false << false << true << true;
    QTest::newRow("sources local") << false << true << true << false;
    QTest::newRow("both local") << true << true << false << false;
}

void TestFileDialog::flagsChooseTheSide()
{
    QFETCH(const bool, allFilesLocal);
    QFETCH(const bool, sourcesLocal);
    QFETCH(const bool, filesRemote);
    QFETCH(const bool, sourcesRemote);
    FileDialog::setAllFilesLocal(allFilesLocal);
    FileDialog::setSourcesLocal(sourcesLocal);

    QVector<bool> remote;
    const ModalSteps::Step look = [&remote](QWidget *window) {
        remote.append(qobject_cast<RemoteFileDialog *>(window) != nullptr);
        cancel(window);
    };
    const ModalSteps steps(QVector<ModalSteps::Step>(13, look));
    FileDialog::getLocalOpenFileName();
    FileDialog::getLocalOpenFileNames();
    FileDialog::getLocalSaveFileName();
    FileDialog::getLocalExistingDirectory();
    FileDialog::getRemoteOpenFileName();
    FileDialog::getRemoteOpenFileNames();
    FileDialog::getRemoteSaveFileName();
    FileDialog::getRemoteExistingDirectory();
    FileDialog::getRemoteExecutableFileName();
    FileDialog::getSourceCodeFileName();
    FileDialog::getSourceCodeFileNames();
    FileDialog::getSourceCodeSaveFileName();
    FileDialog::getSourceCodeExistingDirectory();
    const QVector<bool> expected
        = QVector<bool>(4, false) + QVector<bool>(5, filesRemote) + QVector<bool>(4, sourcesRemote);
    QCOMPARE(remote, expected);
}

void TestFileDialog::nextRequestStartsWhereThePurposeEnded_data()
{
    QTest::addColumn<bool>("remote");
    QTest::addColumn<Request>("request");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("remembered");

    const Request open = [](const QString &caption, const QString &dir) {
        return FileDialog::getRemoteOpenFileName(nullptr, caption, dir);
    };
    const Request openMany = [](const QString &caption, const QString &dir) {
        return FileDialog::getRemoteOpenFileNames(nullptr, caption, dir).value(0);
    };
    const Request save = [](const QString &caption, const QString &dir) {
        return FileDialog::getRemoteSaveFileName(nullptr, caption, dir);
    };
    const Request directory = [](const QString &caption, const QString &dir) {
        return FileDialog::getRemoteExistingDirectory(nullptr, caption, dir);
    };
    const Request program = [](const QString &caption, const QString &dir) {
        return FileDialog::getRemoteExecutableFileName(nullptr, caption, dir);
    };
    for (const bool remote : {false, true}) {
        const char *const side = remote ? "remote" : "local";
        QTest::addRow("%s open", side) << remote << open << "a.txt"
                                       << "one";
        QTest::addRow("%s open many", side) << remote << openMany << "\"b.txt\" \"a.txt\""
                                            << "one";
        QTest::addRow("%s save", side) << remote << save << "new.txt"
                                       << "one";
        QTest::addRow("%s directory", side) << remote << directory << "deep"
                                            << "one/deep";
        QTest::addRow("%s program", side) << remote << program << "tool"
                                          << "one";
    }
}

void TestFileDialog::nextRequestStartsWhereThePurposeEnded()
{
    QFETCH(const bool, remote);
    QFETCH(const Request, request);
    QFETCH(const QString, typed);
    QFETCH(const QString, remembered);
    FileDialog::setAllFilesLocal(!remote);
    const QString top = remote ? QString() : m_folder->path();
    const QString caption = QString::fromLatin1(QTest::currentDataTag());
    const QString prefix = remote ? QStringLiteral("remote:") : QString();

    QString next;
    QString other;
    const auto directoryOf = [](QWidget *window) {
        const auto *const ours = qobject_cast<RemoteFileDialog *>(window);
        return ours ? ours->directory().path()
                    : qobject_cast<QFileDialog *>(window)->directory().path();
    };
    const ModalSteps steps({
        [typed](QWidget *window) { enter(window, typed); },
        [&](QWidget *window) {
            next = directoryOf(window);
            cancel(window);
        },
        [&](QWidget *window) {
            other = directoryOf(window);
            cancel(window);
        },
    });
    const QString result = request(QStringLiteral("Open ") + caption, top + QStringLiteral("/one"));
    QVERIFY2(result.startsWith(top + QStringLiteral("/one/")), qPrintable(result));
    QCOMPARE(request(QStringLiteral("Choose ") + caption.toUpper(), QString()), QString());
    QCOMPARE(next, prefix + top + QLatin1Char('/') + remembered);
    QCOMPARE(request(caption, top + QStringLiteral("/one/deep")), QString());
    QCOMPARE(other, prefix + top + QStringLiteral("/one/deep"));
}

void TestFileDialog::cancellingGivesNothingAndForgetsNothing()
{
    FileDialog::setAllFilesLocal(false);
    QString filter = QStringLiteral("Text (*.txt)");
    const ModalSteps steps({cancel, cancel, cancel});
    const QString two = QStringLiteral("All (*);;Text (*.txt)");
    QVERIFY(
        FileDialog::getRemoteOpenFileName(nullptr, QString(), QString(), two, &filter).isNull());
    QVERIFY(
        FileDialog::getRemoteSaveFileName(nullptr, QString(), QString(), two, &filter).isNull());
    QVERIFY(FileDialog::getLocalSaveFileName(nullptr, QString(), QString(), two, &filter).isNull());
    QCOMPARE(filter, QStringLiteral("Text (*.txt)"));
}

void TestFileDialog::refusingToReplaceAsksAgain()
{
    QString first;
    QString second;
    const ModalSteps steps({
        enteringLocally(QStringLiteral("a")),
        pressing(QMessageBox::No, &first),
        enteringLocally(QStringLiteral("b.txt")),
        pressing(QMessageBox::Yes, &second),
    });
    const QString result = FileDialog::getLocalSaveFileName(nullptr, QStringLiteral("Save Notes"),
                                                            path(QStringLiteral("one")),
                                                            QStringLiteral("Text (*.txt)"));
    QCOMPARE(steps.shown(), 4);
    QCOMPARE(first, QStringLiteral("a.txt already exists.\nDo you want to replace it?"));
    QCOMPARE(second, QStringLiteral("b.txt already exists.\nDo you want to replace it?"));
    QCOMPARE(result, path(QStringLiteral("one/b.txt")));
}

void TestFileDialog::remoteSaveFollowsTheFilter()
{
    FileDialog::setAllFilesLocal(false);
    const QString filters = QStringLiteral("Sources (*.c *.h);;Text (*.txt)");
    QString filter = QStringLiteral("Text (*.txt)");
    const ModalSteps steps({
        entering<RemoteFileDialog>(QStringLiteral("plain")),
        entering<RemoteFileDialog>(QStringLiteral("plain")),
        ModalSteps::with<RemoteFileDialog>([](RemoteFileDialog *dialog) {
            auto *const types = dialog->findChild<QComboBox *>(QStringLiteral("fileTypeCombo"));
            types->setFocus();
            QTest::keyClick(types, Qt::Key_Up);
            enter(dialog, QStringLiteral("plain"));
        }),
    });
    const QString dir = QStringLiteral("/one");
    QCOMPARE(
        FileDialog::getRemoteSaveFileName(nullptr, QString(), dir, QStringLiteral("Text (*.txt)")),
        QStringLiteral("/one/plain.txt"));
    QCOMPARE(FileDialog::getRemoteSaveFileName(nullptr, QString(), dir, filters, &filter),
             QStringLiteral("/one/plain.txt"));
    QCOMPARE(FileDialog::getRemoteSaveFileName(nullptr, QString(), dir, filters, &filter),
             QStringLiteral("/one/plain.c"));
    QCOMPARE(filter, QStringLiteral("Sources (*.c *.h)"));
}

void TestFileDialog::parentGoesWhileTheDialogIsUp()
{
    FileDialog::setAllFilesLocal(false);
    for (const bool save : {false, true}) {
        auto *const parent = new QWidget;
        const ModalSteps steps({[parent](QWidget *) { delete parent; }});
        const QString result = save ? FileDialog::getRemoteSaveFileName(parent)
                                    : FileDialog::getRemoteExecutableFileName(parent);
        QVERIFY(result.isNull());
    }
}

void TestFileDialog::executablePickerNarrowsItsList_data()
{
    QTest::addColumn<bool>("remote");
    QTest::newRow("local") << false;
    QTest::newRow("remote") << true;
}

void TestFileDialog::executablePickerNarrowsItsList()
{
    QFETCH(const bool, remote);
    FileDialog::setAllFilesLocal(!remote);

    const auto rows = [](QWidget *window) {
        const auto *const view = window->findChild<QListView *>(QStringLiteral("listView"));
        QStringList names;
        for (int row = 0; row < view->model()->rowCount(view->rootIndex()); ++row)
            names += view->model()->index(row, 0, view->rootIndex()).data().toString();
        names.sort();
        return names;
    };
    const QStringList programs = {QStringLiteral("deep"), QStringLiteral("tool")};
    const QStringList all = {QStringLiteral("a.txt"), QStringLiteral("b.txt"),
                             QStringLiteral("deep"), QStringLiteral("tool")};
    const ModalSteps steps({[&](QWidget *window) {
        QTRY_COMPARE(rows(window), programs);
        auto *const types = window->findChild<QComboBox *>(QStringLiteral("fileTypeCombo"));
        types->setFocus();
        QTest::keyClick(types, Qt::Key_Down);
        QTRY_COMPARE(rows(window), all);
        QTest::keyClick(types, Qt::Key_Up);
        QTRY_COMPARE(rows(window), programs);
        enter(window, QStringLiteral("tool"));
    }});
    const QString top = remote ? QString() : m_folder->path();
    const QString chosen = FileDialog::getRemoteExecutableFileName(
        nullptr, QStringLiteral("Open Program"), top + QStringLiteral("/one"));
    QCOMPARE(chosen, top + QStringLiteral("/one/tool"));
}

void TestFileDialog::programsHaveAPictureOfTheirOwn()
{
    const FileDialog::ExecutableFileIconProvider icons;
    const auto cacheKey
        = [&](const QString &name) { return icons.icon(QFileInfo(path(name))).cacheKey(); };
    const qint64 program = cacheKey(QStringLiteral("one/tool"));
    QVERIFY(!icons.icon(QFileInfo(path(QStringLiteral("one/tool")))).availableSizes().isEmpty());
    QVERIFY(program != cacheKey(QStringLiteral("one/a.txt")));
    QVERIFY(program != cacheKey(QStringLiteral("one")));
}

QTEST_MAIN(TestFileDialog)
#include "tst_filedialog.moc"
