#include <tul-util-gui/filedialog/filedialog.h>
#include <tul-util-gui/filedialog/remotefiledialog.h>
#include <workbench/remotefolder.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace
{

struct SampleFile {
    const char *path;
    int size;
};

// Small enough to be made at each start, large enough for every unit of the size column.
constexpr SampleFile sampleFiles[] = {
    {"home/user/.profile", 220},
    {"home/user/notes.txt", 1536},
    {"home/user/projects/solver/CMakeLists.txt", 640},
    {"home/user/projects/solver/main.cpp", 5210},
    {"home/user/projects/solver/mesh.cpp", 48'300},
    {"home/user/projects/solver/mesh.h", 3900},
    {"home/user/projects/solver/run 2.log", 91'000},
    {"home/user/projects/solver/run 10.log", 87'500},
    {"home/user/results/pressure.dat", 2'400'000},
    {"home/user/results/velocity.dat", 7'200'000},
    {"opt/tools/bin/solver", 180'000},
    {"tmp/core.4711", 1'048'576},
};

} // namespace

bool makeSampleTree(const QString &folder)
{
    const QDir root(folder);
    for (const SampleFile &sample : sampleFiles) {
        const QString path = root.filePath(QString::fromLatin1(sample.path));
        QFile file(path);
        if (!root.mkpath(QFileInfo(path).path()) || !file.open(QIODevice::WriteOnly)
            || !file.resize(sample.size))
            return false;
    }
    QFile solver(root.filePath(QStringLiteral("opt/tools/bin/solver")));
    return solver.setPermissions(solver.permissions() | QFile::ExeOwner | QFile::ExeUser)
        && QFile::link(QStringLiteral("results/pressure.dat"),
                       root.filePath(QStringLiteral("home/user/latest.dat")));
}

RemoteFolder::RemoteFolder(const QString &folder)
    : m_temporary(folder.isEmpty() ? std::make_unique<QTemporaryDir>() : nullptr)
{
    const QString served = m_temporary ? m_temporary->path() : folder;
    if (m_temporary && (!m_temporary->isValid() || !makeSampleTree(served)))
        m_fault = QStringLiteral("cannot make the sample files in \"%1\"").arg(served);
    else if (!QFileInfo(served).isDir())
        m_fault = QStringLiteral("\"%1\" is no folder").arg(served);
    else
        m_engine = std::make_unique<FolderEngine>(served);

    FileDialog::setAllFilesLocal(!m_engine);
    if (m_temporary) {
        RemoteFileDialog::setRemoteHomeDirectory(QStringLiteral("remote:/home/user"));
        RemoteFileDialog::setDefaultWorkingDirectory(
            QStringLiteral("remote:/home/user/projects/solver"));
    }
}
