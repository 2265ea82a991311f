#include <tul-util-gui/filedialog/acceptdecision_p.h>

#include <support/testcase.h>

#include <QtTest>

using tul::AcceptAction;
Q_DECLARE_METATYPE(tul::AcceptAction)

// Files that begin with "d" are directories, those with "m" are missing.
class TestAcceptDecision : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void decides_data();
    void decides();
};

void TestAcceptDecision::decides_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("files");
    QTest::addColumn<AcceptAction>("open");
    QTest::addColumn<AcceptAction>("save");
    QTest::addColumn<QString>("button");

    const auto row = [](QFileDialog::FileMode mode, const char *files, AcceptAction open,
                        AcceptAction save, const char *button) {
        QTest::addRow("%d %s", mode, files) << int(mode) << QString::fromLatin1(files) << open
                                            << save << QString::fromLatin1(button);
    };
    using A = AcceptAction;
    for (const auto mode :
         {QFileDialog::AnyFile, QFileDialog::ExistingFile, QFileDialog::ExistingFiles})
        row(mode, "", A::Nothing, A::Nothing, "off");
    row(QFileDialog::AnyFile, "f", A::Accept, A::AskOverwrite, "on");
    row(QFileDialog::AnyFile, "m", A::Accept, A::Accept, "on");
    row(QFileDialog::AnyFile, "d", A::EnterDirectory, A::EnterDirectory, "opens");
    row(QFileDialog::ExistingFile, "f", A::Accept, A::Accept, "on");
    row(QFileDialog::ExistingFile, "m", A::TellMissingFile, A::TellMissingFile, "off");
    row(QFileDialog::ExistingFile, "d", A::EnterDirectory, A::EnterDirectory, "opens");
    row(QFileDialog::ExistingFiles, "f g", A::Accept, A::Accept, "on");
    row(QFileDialog::ExistingFiles, "f m", A::TellMissingFile, A::TellMissingFile, "on");
    row(QFileDialog::ExistingFiles, "m1 m2", A::TellMissingFile, A::TellMissingFile, "off");
    row(QFileDialog::ExistingFiles, "f d", A::EnterDirectory, A::EnterDirectory, "on");
    for (const auto mode : {QFileDialog::Directory, tul::directoryOnly}) {
        row(mode, "d", A::Accept, A::Accept, "on");
        row(mode, "f", A::Nothing, A::Nothing, "off");
        row(mode, "m", A::TellMissingDirectory, A::TellMissingDirectory, "off");
    }
}

void TestAcceptDecision::decides()
{
    QFETCH(const int, mode);
    QFETCH(const QString, files);
    QFETCH(const QString, button);
    const auto kindOf = [](const QString &path) {
        return path.startsWith(QLatin1Char('d')) ? tul::FileKind::Directory
            : path.startsWith(QLatin1Char('m'))  ? tul::FileKind::Missing
                                                 : tul::FileKind::File;
    };
    tul::AcceptRequest request;
    request.fileMode = QFileDialog::FileMode(mode);
    request.files = files.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    QTEST(tul::decideAccept(request, kindOf).action, "open");
    const tul::AcceptButton look = tul::acceptButton(request, kindOf);
    QCOMPARE(look.enabled ? (look.opens ? "opens" : "on") : "off", qPrintable(button));

    request.acceptMode = QFileDialog::AcceptSave;
    QTEST(tul::decideAccept(request, kindOf).action, "save");
    request.confirmOverwrite = false;
    QVERIFY(tul::decideAccept(request, kindOf).action != AcceptAction::AskOverwrite);
    request.typed = QStringLiteral("..");
    QCOMPARE(tul::decideAccept(request, kindOf).action,
             request.files.isEmpty() ? AcceptAction::Nothing : AcceptAction::GoToParent);
}

QTEST_MAIN(TestAcceptDecision)
#include "tst_acceptdecision.moc"
