#include <tul-util-gui/filedialog/dialogpaths_p.h>

#include <QFile>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <cstddef>
#include <pwd.h>
#include <unistd.h>
#endif

namespace tul
{

namespace
{

constexpr QLatin1Char slash('/');
constexpr QLatin1Char quote('"');

} // namespace

QString parentPath(const QString &path)
{
    QStringList elements = splitPath(path);
    if (elements.size() <= 1)
        return {};
    elements.removeLast();
    const QString &root = elements.constFirst();
    // A drive without its slash is the working directory there.
    if (elements.size() == 1 && root.size() == 2 && root.endsWith(QLatin1Char(':')))
        return root + slash;
    return requestPath(joinElements(elements));
}

QString lastElement(const QString &path)
{
    const QStringList elements = splitPath(path);
    return elements.isEmpty() ? QString() : elements.constLast();
}

QString joinSlash(const QString &directory, const QString &name)
{
    return directory.isEmpty() || directory.endsWith(slash) ? directory + name
                                                            : directory + slash + name;
}

bool isOnThisMachine(const QString &path)
{
    return path.startsWith(slash) || path.indexOf(QLatin1Char(':')) == 1;
}

bool isNameTooLong(const QString &path)
{
#ifdef Q_OS_UNIX
    if (!isOnThisMachine(path))
        return false;
    const long limit = pathconf(QFile::encodeName(parentPath(path)).constData(), _PC_NAME_MAX);
    return limit >= 0 && QFile::encodeName(lastElement(path)).size() > limit;
#else
    Q_UNUSED(path)
    return false;
#endif
}

QString homeOfUser(const QString &user)
{
#ifdef Q_OS_UNIX
    constexpr int usualSize = 1024;
    constexpr int largestSize = 1024 * usualSize;
    const QByteArray name = QFile::encodeName(user);
    QByteArray texts(usualSize, '\0');
    passwd entry = {};
    passwd *found = nullptr;
    while (getpwnam_r(name.constData(), &entry, texts.data(),
                      static_cast<std::size_t>(texts.size()), &found)
               == ERANGE
           && texts.size() < largestSize)
        texts.resize(2 * texts.size());
    return found ? QFile::decodeName(found->pw_dir) : QString();
#else
    Q_UNUSED(user)
    return {};
#endif
}

QStringList splitFileNames(const QString &text)
{
    if (!text.contains(quote))
        return text.isEmpty() ? QStringList() : QStringList{text};
    const QStringList pieces = text.split(quote);
    QStringList names;
    for (int i = 1; i < pieces.size(); i += 2) {
        if (!pieces.at(i).isEmpty())
            names.append(pieces.at(i));
    }
    return names;
}

QString joinFileNames(const QStringList &names)
{
    if (names.size() == 1)
        return names.constFirst();
    QStringList quoted;
    for (const QString &name : names)
        quoted.append(quote + name + quote);
    return quoted.join(QLatin1Char(' '));
}

} // namespace tul
