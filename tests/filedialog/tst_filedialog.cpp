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

using T = const QString &;
using Request = std::function<QString(T caption, T dir)>;
Q_DECLARE_METATYPE(Request)

namespace
{

QString q(const char *text)
{
    return QString::fromLatin1(text);
}

/// Puts in a name, as by pasting, which brings up no completions, and clicks on Open, Save or
/// Choose.
void enter(QWidget *dialog, const QString &name)
{
    dialog->findChild<QLineEdit *>(q("fileNameEdit"))->setText(name);
    auto *const buttons = dialog->findChild<QDialogButtonBox *>(q("buttonBox"));
    QTest::mouseClick(buttons->buttons().constFirst(), Qt::LeftButton);
}

template<class Dialog> ModalSteps::Step entering(const QString &name)
{
    return ModalSteps::with<Dialog>([name](Dialog *dialog) { enter(dialog, name); });
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
    void init();
    void cleanup();

    void captionTellsThePurpose();
    void suffixIsAddedUnlessItIsThere();
    void flagsChooseTheSide();
    void nextRequestStartsWhereThePurposeEnded_data();
    void nextRequestStartsWhereThePurposeEnded();
    void cancellingGivesNothingAndForgetsNothing();
    void refusingToReplaceAsksAgain();
    void remoteSaveFollowsTheFilter();
    void parentGoesWhileTheDialogIsUp();
    void executablePickerNarrowsItsList();
    void programsHaveAPictureOfTheirOwn();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    void makeFile(const QString &name, bool executable = false) const;

    QTemporaryDir m_settings;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<FolderEngine> m_engine;
};

void TestFileDialog::init()
{
    TestCase::init();
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_settings.path());
    m_folder = std::make_unique<QTemporaryDir>();
    m_engine = std::make_unique<FolderEngine>(m_folder->path());
    QVERIFY(QDir(m_folder->path()).mkpath(q("one/deep")));
    makeFile(q("one/a.txt"));
    makeFile(q("one/b.txt"));
    makeFile(q("one/tool"), true);
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

void TestFileDialog::captionTellsThePurpose()
{
    const char *const rows[][2] = {{"Open Core File", "core file"},
                                   {"Choose core file", "core file"},
                                   {"Choose Save Open x", "x"},
                                   {"Open Save x", "save x"},
                                   {"open File", "open file"},
                                   {"Open", "open"},
                                   {"", ""}};
    for (const auto &[caption, key] : rows)
        QCOMPARE(tul::purposeKey(q(caption)), q(key));
}

void TestFileDialog::suffixIsAddedUnlessItIsThere()
{
    const char *const rows[][3] = {{"/a/x", nullptr, "/a/x"},
                                   {"/a/x", "txt", "/a/x.txt"},
                                   {"/a/notes.md", "txt", "/a/notes.md.txt"},
                                   {"/a/notes.txt", "txt", "/a/notes.txt"},
                                   {"/a/notes.TXT", "txt", "/a/notes.TXT.txt"},
                                   {"/a/x.tar.gz", "tar.gz", "/a/x.tar.gz"}};
    for (const auto &[answer, suffix, fileName] : rows)
        QCOMPARE(tul::withSuffix(q(answer), q(suffix)), q(fileName));
}

void TestFileDialog::flagsChooseTheSide()
{
    for (const int flags : {1, 0, 2, 3}) { // the first are those at first
        const bool allFilesLocal = flags & 1;
        const bool sourcesLocal = flags & 2;
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
        QCOMPARE(remote,
                 QVector<bool>(4, false) + QVector<bool>(5, !allFilesLocal)
                     + QVector<bool>(4, !allFilesLocal && !sourcesLocal));
    }
}

void TestFileDialog::nextRequestStartsWhereThePurposeEnded_data()
{
    QTest::addColumn<bool>("remote");
    QTest::addColumn<Request>("request");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("remembered");

    const struct {
        const char *name;
        Request request;
        const char *typed, *remembered;
    } rows[] = {
        {"open", [](T c, T d) { return FileDialog::getRemoteOpenFileName(nullptr, c, d); }, "a.txt",
         "one"},
        {"open many",
         [](T c, T d) { return FileDialog::getRemoteOpenFileNames(nullptr, c, d).value(0); },
         "\"b.txt\" \"a.txt\"", "one"},
        {"save", [](T c, T d) { return FileDialog::getRemoteSaveFileName(nullptr, c, d); },
         "new.txt", "one"},
        {"directory",
         [](T c, T d) { return FileDialog::getRemoteExistingDirectory(nullptr, c, d); }, "deep",
         "one/deep"},
        {"program", [](T c, T d) { return FileDialog::getRemoteExecutableFileName(nullptr, c, d); },
         "tool", "one"}};
    for (const bool remote : {false, true}) {
        for (const auto &row : rows)
            QTest::addRow("%s %s", remote ? "remote" : "local", row.name)
                << remote << row.request << q(row.typed) << q(row.remembered);
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
    const QString prefix = remote ? q("remote:") : QString();

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
    const QString result = request(q("Open ") + caption, top + q("/one"));
    QVERIFY2(result.startsWith(top + q("/one/")), qPrintable(result));
    QCOMPARE(request(q("Choose ") + caption.toUpper(), QString()), QString());
    QCOMPARE(next, prefix + top + QLatin1Char('/') + remembered);
    QCOMPARE(request(caption, top + q("/one/deep")), QString());
    QCOMPARE(other, prefix + top + q("/one/deep"));
}

void TestFileDialog::cancellingGivesNothingAndForgetsNothing()
{
    FileDialog::setAllFilesLocal(false);
    QString filter = q("Text (*.txt)");
    const ModalSteps steps({cancel, cancel, cancel});
    const QString two = q("All (*);;Text (*.txt)");
    QVERIFY(
        FileDialog::getRemoteOpenFileName(nullptr, QString(), QString(), two, &filter).isNull());
    QVERIFY(
        FileDialog::getRemoteSaveFileName(nullptr, QString(), QString(), two, &filter).isNull());
    QVERIFY(FileDialog::getLocalSaveFileName(nullptr, QString(), QString(), two, &filter).isNull());
    QCOMPARE(filter, q("Text (*.txt)"));
}

void TestFileDialog::refusingToReplaceAsksAgain()
{
    QString first;
    QString second;
    const ModalSteps steps({
        entering<QFileDialog>(q("a")),
        pressing(QMessageBox::No, &first),
        entering<QFileDialog>(q("b.txt")),
        pressing(QMessageBox::Yes, &second),
    });
    const QString result = FileDialog::getLocalSaveFileName(nullptr, q("Save Notes"),
                                                            path(q("one")), q("Text (*.txt)"));
    QCOMPARE(steps.shown(), 4);
    QCOMPARE(first, q("a.txt already exists.\nDo you want to replace it?"));
    QCOMPARE(second, q("b.txt already exists.\nDo you want to replace it?"));
    QCOMPARE(result, path(q("one/b.txt")));
}

void TestFileDialog::remoteSaveFollowsTheFilter()
{
    FileDialog::setAllFilesLocal(false);
    const QString filters = q("Sources (*.c *.h);;Text (*.txt)");
    QString filter = q("Text (*.txt)");
    const ModalSteps steps({
        entering<RemoteFileDialog>(q("plain")),
        entering<RemoteFileDialog>(q("plain")),
        ModalSteps::with<RemoteFileDialog>([](RemoteFileDialog *dialog) {
            auto *const types = dialog->findChild<QComboBox *>(q("fileTypeCombo"));
            types->setFocus();
            QTest::keyClick(types, Qt::Key_Up);
            enter(dialog, q("plain"));
        }),
    });
    const QString dir = q("/one");
    QCOMPARE(FileDialog::getRemoteSaveFileName(nullptr, QString(), dir, q("Text (*.txt)")),
             q("/one/plain.txt"));
    QCOMPARE(FileDialog::getRemoteSaveFileName(nullptr, QString(), dir, filters, &filter),
             q("/one/plain.txt"));
    QCOMPARE(FileDialog::getRemoteSaveFileName(nullptr, QString(), dir, filters, &filter),
             q("/one/plain.c"));
    QCOMPARE(filter, q("Sources (*.c *.h)"));
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

void TestFileDialog::executablePickerNarrowsItsList()
{
    const auto rows = [](QWidget *window) {
        const auto *const view = window->findChild<QListView *>(q("listView"));
        QStringList names;
        for (int row = 0; row < view->model()->rowCount(view->rootIndex()); ++row)
            names += view->model()->index(row, 0, view->rootIndex()).data().toString();
        names.sort();
        return names;
    };
    const QStringList programs = {q("deep"), q("tool")};
    const QStringList all = {q("a.txt"), q("b.txt"), q("deep"), q("tool")};
    for (const bool remote : {false, true}) {
        FileDialog::setAllFilesLocal(!remote);
        const ModalSteps steps({[&](QWidget *window) {
            QTRY_COMPARE(rows(window), programs);
            auto *const types = window->findChild<QComboBox *>(q("fileTypeCombo"));
            types->setFocus();
            QTest::keyClick(types, Qt::Key_Down);
            QTRY_COMPARE(rows(window), all);
            QTest::keyClick(types, Qt::Key_Up);
            QTRY_COMPARE(rows(window), programs);
            enter(window, q("tool"));
        }});
        const QString top = remote ? QString() : m_folder->path();
        const QString chosen
            = FileDialog::getRemoteExecutableFileName(nullptr, q("Open Program"), top + q("/one"));
        QCOMPARE(chosen, top + q("/one/tool"));
    }
}

void TestFileDialog::programsHaveAPictureOfTheirOwn()
{
    const FileDialog::ExecutableFileIconProvider icons;
    const auto cacheKey
        = [&](const QString &name) { return icons.icon(QFileInfo(path(name))).cacheKey(); };
    const qint64 program = cacheKey(q("one/tool"));
    QVERIFY(!icons.icon(QFileInfo(path(q("one/tool")))).availableSizes().isEmpty());
    QVERIFY(program != cacheKey(q("one/a.txt")));
    QVERIFY(program != cacheKey(q("one")));
}

QTEST_MAIN(TestFileDialog)
#include "tst_filedialog.moc"
