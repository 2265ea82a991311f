#include <private/qguiapplication_p.h>
#include <qpa/qplatformtheme.h>

#include <tul-util-gui/filedialog/executablefileiconprovider_p.h>
#include <tul-util-gui/filedialog/filedialog.h>
#include <tul-util-gui/filedialog/filedialog_p.h>
#include <tul-util-gui/filedialog/remotefiledialog.h>

#include <backends/folder/folderengine.h>
#include <support/literal.h>
#include <support/modalsteps.h>
#include <support/testcase.h>

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QSettings>
#include <QTemporaryDir>
#include <QTranslator>
#include <QtTest>

namespace
{

/// Puts in a name, as by pasting, which brings up no completions, and clicks on Open, Save or
/// Choose.
void enter(QWidget *dialog, const QString &name)
{
    dialog->findChild<QLineEdit *>("fileNameEdit"_s)->setText(name);
    auto *const buttons = dialog->findChild<QDialogButtonBox *>("buttonBox"_s);
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

/// Goes to another name filter.
void choose(QWidget *window, Qt::Key key)
{
    auto *const types = window->findChild<QComboBox *>("fileTypeCombo"_s);
    types->setFocus();
    QTest::keyClick(types, key);
}

/// Knows the words of the executable picker only.
class Dutch : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char * /*context*/, const char *text, const char * /*note*/,
                      int /*n*/) const override
    {
        const bool known = QByteArray(text).startsWith("Executable Files");
        return known ? "Programma's (*);; Andere bestanden (*)"_s : QString();
    }
};

class AskedTheme : public QPlatformTheme
{
public:
    QIcon fileIcon(const QFileInfo & /*info*/, IconOptions /*options*/) const override
    {
        ++asked;
        return {};
    }
    mutable int asked = 0;
};

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
    void nextRequestStartsWhereThePurposeEnded();
    void refusingToReplaceAsksAgain();
    void remoteSaveFollowsTheFilter();
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
    QVERIFY(QDir(m_folder->path()).mkpath("one/deep"_s));
    makeFile("one/a.txt"_s);
    makeFile("one/b.txt"_s);
    makeFile("one/tool"_s, true);
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
    const QString rows[][2] = {{"Open Core File"_s, "core file"_s},
                               {"Choose core file"_s, "core file"_s},
                               {"Choose Save Open x"_s, "x"_s},
                               {"Open Save x"_s, "save x"_s},
                               {"open File"_s, "open file"_s},
                               {"Open"_s, "open"_s},
                               {}};
    for (const auto &[caption, key] : rows)
        QCOMPARE(tul::purposeKey(caption), key);
}

void TestFileDialog::suffixIsAddedUnlessItIsThere()
{
    const QString rows[][3] = {{"/a/x"_s, {}, "/a/x"_s},
                               {"/a/x"_s, "txt"_s, "/a/x.txt"_s},
                               {"/a/notes.md"_s, "txt"_s, "/a/notes.md.txt"_s},
                               {"/a/notes.txt"_s, "txt"_s, "/a/notes.txt"_s},
                               {"/a/notes.TXT"_s, "txt"_s, "/a/notes.TXT.txt"_s},
                               {"/a/x.tar.gz"_s, "tar.gz"_s, "/a/x.tar.gz"_s}};
    for (const auto &[answer, suffix, fileName] : rows)
        QCOMPARE(tul::withSuffix(answer, suffix), fileName);
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

void TestFileDialog::nextRequestStartsWhereThePurposeEnded()
{
    using Text = const QString &;
    const struct {
        QString caption;
        std::function<QString(Text caption, Text dir)> ask;
        QString typed, remembered;
    } rows[] = {
        {"file"_s, [](Text c, Text d) { return FileDialog::getRemoteOpenFileName({}, c, d); },
         "a.txt"_s, "/one"_s},
        {"files"_s,
         [](Text c, Text d) { return FileDialog::getRemoteOpenFileNames({}, c, d).value(0); },
         "\"b.txt\" \"a.txt\""_s, "/one"_s},
        {"new file"_s, [](Text c, Text d) { return FileDialog::getRemoteSaveFileName({}, c, d); },
         "new.txt"_s, "/one"_s},
        {"directory"_s,
         [](Text c, Text d) { return FileDialog::getRemoteExistingDirectory({}, c, d); }, "deep"_s,
         "/one/deep"_s},
        {"program"_s,
         [](Text c, Text d) { return FileDialog::getRemoteExecutableFileName({}, c, d); }, "tool"_s,
         "/one"_s}};
    for (const bool remote : {false, true}) {
        FileDialog::setAllFilesLocal(!remote);
        const QString top = remote ? QString() : m_folder->path();
        const QString shown = remote ? "remote:"_s : top;
        for (const auto &row : rows) {
            QStringList directories;
            const ModalSteps::Step look = [&](QWidget *window) {
                const auto *const ours = qobject_cast<RemoteFileDialog *>(window);
                const auto *const theirs = qobject_cast<QFileDialog *>(window);
                directories.append(ours ? ours->directory().path() : theirs->directory().path());
                cancel(window);
            };
            const ModalSteps steps(
                {[&](QWidget *window) { enter(window, row.typed); }, look, look});
            QVERIFY(row.ask("Open "_s + row.caption, top + "/one"_s).startsWith(top + "/one/"_s));
            QCOMPARE(row.ask("Choose "_s + row.caption.toUpper(), QString()), QString());
            QCOMPARE(row.ask(row.caption, top + "/one/deep"_s), QString());
            QCOMPARE(directories, QStringList({shown + row.remembered, shown + "/one/deep"_s}));
        }
    }
}

void TestFileDialog::refusingToReplaceAsksAgain()
{
    QString first;
    QString second;
    const ModalSteps steps({
        entering<QFileDialog>("a"_s),
        pressing(QMessageBox::No, &first),
        entering<QFileDialog>("b.txt"_s),
        pressing(QMessageBox::Yes, &second),
        [](QWidget *window) {
            choose(window, Qt::Key_Down);
            enter(window, "a.txt"_s);
        },
        pressing(QMessageBox::No, &first),
        cancel,
    });
    const QString dir = path("one"_s);
    QCOMPARE(FileDialog::getLocalSaveFileName(nullptr, "Save Notes"_s, dir, "Text (*.txt)"_s),
             path("one/b.txt"_s));
    QCOMPARE(first, "a.txt already exists.\nDo you want to replace it?"_s);
    QCOMPARE(second, "b.txt already exists.\nDo you want to replace it?"_s);
    QString filter = "All (*)"_s;
    FileDialog::getLocalSaveFileName(nullptr, {}, dir, "All (*);;Text (*.txt)"_s, &filter);
    QCOMPARE(filter, "All (*)"_s); // it was cancelled in the end
    QCOMPARE(steps.shown(), 7);
}

void TestFileDialog::remoteSaveFollowsTheFilter()
{
    FileDialog::setAllFilesLocal(false);
    const QString both = "Sources (*.c *.h);;Text (*.txt)"_s;
    QString filter = "Text (*.txt)"_s;
    const auto save = [&filter](const QString &filters, QFileDialog::Options options = {}) {
        return FileDialog::getRemoteSaveFileName({}, {}, "/one/new.txt"_s, filters, &filter,
                                                 options);
    };
    const auto plain = entering<RemoteFileDialog>("plain"_s);
    const auto other = [](QWidget *window) {
        choose(window, Qt::Key_Up);
        enter(window, "plain"_s);
    };
    const ModalSteps steps({plain, plain, plain, other, cancel});
    QCOMPARE(save("Text (*.txt)"_s), "/one/plain.txt"_s);
    QCOMPARE(save(both), "/one/plain.txt"_s);
    QCOMPARE(save(both, QFileDialog::HideNameFilterDetails), "/one/plain.txt"_s);
    QCOMPARE(save(both, QFileDialog::HideNameFilterDetails), "/one/plain.c"_s);
    QVERIFY(save("All (*)"_s).isNull());
    QCOMPARE(filter, "Sources (*.c *.h)"_s);
}

void TestFileDialog::executablePickerNarrowsItsList()
{
    const auto rows = [](QWidget *window) {
        const auto *const view = window->findChild<QListView *>("listView"_s);
        QStringList names;
        for (int row = 0; row < view->model()->rowCount(view->rootIndex()); ++row)
            names += view->model()->index(row, 0, view->rootIndex()).data().toString();
        return names;
    };
    const QStringList programs = {"deep"_s, "tool"_s};
    const QStringList all = {"deep"_s, "a.txt"_s, "b.txt"_s, "tool"_s};
    Dutch dutch;
    for (const int flags : {0, 1, 2, 3}) {
        const bool remote = flags & 1;
        if (flags & 2)
            QCoreApplication::installTranslator(&dutch);
        FileDialog::setAllFilesLocal(!remote);
        const ModalSteps steps({[&](QWidget *window) {
            QTRY_COMPARE(rows(window), programs);
            choose(window, Qt::Key_Down);
            QTRY_COMPARE(rows(window), all);
            choose(window, Qt::Key_Up);
            QTRY_COMPARE(rows(window), programs);
            enter(window, "tool"_s);
        }});
        const QString top = remote ? QString() : m_folder->path();
        const QString chosen = FileDialog::getRemoteExecutableFileName(
            nullptr, "Open Program"_s, top + "/one"_s,
            flags & 2 ? QFileDialog::HideNameFilterDetails : QFileDialog::Options());
        QCoreApplication::removeTranslator(&dutch);
        QCOMPARE(chosen, top + "/one/tool"_s);
    }
}

void TestFileDialog::programsHaveAPictureOfTheirOwn()
{
    const FileDialog::ExecutableFileIconProvider icons;
    const auto cacheKey
        = [&](const QString &name) { return icons.icon(QFileInfo(name)).cacheKey(); };
    const qint64 program = cacheKey(path("one/tool"_s));
    QVERIFY(!icons.icon(QFileInfo(path("one/tool"_s))).availableSizes().isEmpty());
    QVERIFY(program != cacheKey(path("one/a.txt"_s)));
    QVERIFY(program != cacheKey(path("one"_s)));
    QCOMPARE(cacheKey("remote:/one/tool"_s), program);

    // A theme would open a file to learn its type.
    AskedTheme theme;
    const QScopedValueRollback<QPlatformTheme *> inUse(QGuiApplicationPrivate::platform_theme,
                                                       &theme);
    for (const QString &name : {"/one/a.txt"_s, "/one"_s, QString()})
        icons.icon(QFileInfo("remote:"_s + name));
    QCOMPARE(theme.asked, 0);
}

QTEST_MAIN(TestFileDialog)
#include "tst_filedialog.moc"
