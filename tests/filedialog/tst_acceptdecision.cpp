#include <tul-util-gui/filedialog/acceptdecision_p.h>

#include <support/testcase.h>

#include <QtTest>

class TestAcceptDecision : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void goesByModeAndFiles();
};

// Files that begin with "d" are directories, those with "m" are missing.
void TestAcceptDecision::goesByModeAndFiles()
{
    using A = tul::AcceptAction;
    const auto any = QFileDialog::AnyFile, one = QFileDialog::ExistingFile;
    const auto several = QFileDialog::ExistingFiles, directory = QFileDialog::Directory;
    const auto kindOf = [](const QString &path) {
        return path.startsWith(QLatin1Char('d')) ? tul::FileKind::Directory
            : path.startsWith(QLatin1Char('m'))  ? tul::FileKind::Missing
                                                 : tul::FileKind::File;
    };
    const struct {
        QFileDialog::FileMode mode;
        const char *files;
        A open, save;
        const char *button;
    } rows[] = {{any, "", A::Nothing, A::Nothing, "off"},
                {any, "f", A::Accept, A::AskOverwrite, "on"},
                {any, "m", A::Accept, A::Accept, "on"},
                {any, "d", A::EnterDirectory, A::EnterDirectory, "opens"},
                {one, "f", A::Accept, A::Accept, "on"},
                {one, "m", A::TellMissingFile, A::TellMissingFile, "off"},
                {one, "d", A::EnterDirectory, A::EnterDirectory, "opens"},
                {several, "f g", A::Accept, A::Accept, "on"},
                {several, "f m", A::TellMissingFile, A::TellMissingFile, "on"},
                {several, "m1 m2", A::TellMissingFile, A::TellMissingFile, "off"},
                {several, "f d", A::EnterDirectory, A::EnterDirectory, "on"},
                {directory, "d", A::Accept, A::Accept, "on"},
                {directory, "f", A::Nothing, A::Nothing, "off"},
                {tul::directoryOnly, "m", A::TellMissingDirectory, A::TellMissingDirectory, "off"}};
    for (const auto &row : rows) {
        tul::AcceptRequest request;
        request.fileMode = row.mode;
        request.files = QString::fromLatin1(row.files).split(QLatin1Char(' '), Qt::SkipEmptyParts);
        QVERIFY2(tul::decideAccept(request, kindOf).action == row.open, row.files);
        const tul::AcceptButton look = tul::acceptButton(request, kindOf);
        QCOMPARE(look.enabled ? (look.opens ? "opens" : "on") : "off", row.button);
        request.acceptMode = QFileDialog::AcceptSave;
        QVERIFY2(tul::decideAccept(request, kindOf).action == row.save, row.files);
        request.confirmOverwrite = false;
        QVERIFY(tul::decideAccept(request, kindOf).action != A::AskOverwrite);
    }
}

QTEST_MAIN(TestAcceptDecision)
#include "tst_acceptdecision.moc"
