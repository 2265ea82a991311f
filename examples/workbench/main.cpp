#include <backends/ssh/sshconnection.h>
#include <workbench/mainwindow.h>
#include <workbench/page.h>
#include <workbench/remotefolder.h>
#include <workbench/screenshots.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QToolTip>

#include <cstdio>
#include <optional>

namespace
{

const char description[]
    = "Shows what the library can do, each part on a page of its own. The first page shows numbers "
      "from an HDF5 file.";

void useDarkPalette()
{
    const QColor ground(0x26, 0x28, 0x2b);
    QPalette palette(QColor(0x3a, 0x3d, 0x41), ground);
    palette.setColor(QPalette::Base, QColor(0x1b, 0x1d, 0x1f));
    palette.setColor(QPalette::AlternateBase, ground);
    palette.setColor(QPalette::Highlight, QColor(0x2f, 0x65, 0x9c));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x6c, 0xb2, 0xeb));
    palette.setColor(QPalette::ToolTipBase, QColor(0x3a, 0x3d, 0x41));
    palette.setColor(QPalette::ToolTipText, Qt::white);
    QApplication::setStyle(QStringLiteral("fusion"));
    QApplication::setPalette(palette);
    QToolTip::setPalette(palette);
}

int wrongUsage(const QString &message)
{
    std::fprintf(stderr, "workbench: %s\n", qPrintable(message));
    return 1;
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    const QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("workbench"));
    QApplication::setApplicationDisplayName(QStringLiteral("Workbench"));
    QApplication::setApplicationVersion(QStringLiteral(WORKBENCH_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromLatin1(description));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("file"),
                                 QStringLiteral("HDF5 file to show; a sample without it."),
                                 QStringLiteral("[file]"));
    parser.addPositionalArgument(
        QStringLiteral("dataset"),
        QStringLiteral("Dataset of that file, such as /group/name; the first one of numbers "
                       "without it."),
        QStringLiteral("[dataset]"));
    const QCommandLineOption screenshots(
        QStringLiteral("screenshots"),
        QStringLiteral("Write a picture of each page into <directory> and quit."),
        QStringLiteral("directory"));
    parser.addOption(screenshots);
    const QCommandLineOption remoteFolder(
        QStringLiteral("remote-folder"),
        QStringLiteral("Take <directory> for the remote machine; some sample files without it."),
        QStringLiteral("directory"));
    parser.addOption(remoteFolder);
    const QCommandLineOption dark(QStringLiteral("dark"),
                                  QStringLiteral("Show light text on a dark ground."));
    parser.addOption(dark);
    const QCommandLineOption remoteMachine(
        QStringLiteral("remote"),
        QStringLiteral(
            "Connect to the remote machine <address>, such as ssh://user@host:port/dir."),
        QStringLiteral("address"));
    parser.addOption(remoteMachine);
    parser.process(application);

    if (parser.isSet(dark))
        useDarkPalette();

    QStringList arguments = parser.positionalArguments();
    if (arguments.size() > 2)
        return wrongUsage(QStringLiteral("more than a file and a dataset; try --help"));
    if (arguments.isEmpty())
        arguments.append(QStringLiteral(WORKBENCH_SAMPLE_FILE));

    SshTarget target;
    std::optional<RemoteFolder> remote;
    QString fault;
    if (parser.isSet(remoteMachine))
        fault = SshTarget::parse(parser.value(remoteMachine), &target);
    else
        fault = remote.emplace(parser.value(remoteFolder)).fault();
    if (!fault.isEmpty())
        return wrongUsage(fault);

    const bool forPictures = parser.isSet(screenshots);
    const bool unattended = forPictures
        || QApplication::platformName() == QLatin1String("offscreen")
        || QApplication::platformName() == QLatin1String("minimal");
    MainWindow window(unattended ? MainWindow::Reporting::StandardError
                                 : MainWindow::Reporting::MessageBoxes);
    window.show();
    window.pages().first()->open(arguments);
    if (parser.isSet(remoteMachine))
        window.connectTo(target, SshSettings());
    if (unattended && window.faultCount() > 0)
        return 1;
    if (forPictures)
        return saveScreenshots(&window, parser.value(screenshots)) ? 0 : 1;
    return QApplication::exec();
}
