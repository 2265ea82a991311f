#include <backends/ssh/sshtarget.h>

#include <backends/ssh/remotename.h>

#include <algorithm>

namespace
{

const QLatin1String scheme("ssh://");

bool isPlain(const QString &text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar character) {
        return character > QLatin1Char(' ') && character != QChar(0x7f);
    });
}

QString decoded(const QString &text)
{
    return tul::remoteNameFromBytes(QByteArray::fromPercentEncoding(tul::remoteNameToBytes(text)));
}

/// Splits "host:port" or "[address]:port"; false when brackets are missing their other half.
bool splitPort(const QString &text, QString *host, QString *port)
{
    int end = text.indexOf(QLatin1Char(':'));
    if (text.startsWith(QLatin1Char('['))) {
        const int close = text.indexOf(QLatin1Char(']'));
        if (close < 0 || (close + 1 < text.size() && text.at(close + 1) != QLatin1Char(':')))
            return false;
        *host = text.mid(1, close - 1);
        end = close + 1 < text.size() ? close + 1 : -1;
    } else {
        *host = text.left(end);
    }
    *port = end < 0 ? QString() : text.mid(end);
    return true;
}

} // namespace

QString SshTarget::parse(const QString &text, SshTarget *target)
{
    if (!text.startsWith(scheme))
        return tr("\"%1\" does not begin with \"ssh://\".").arg(text);
    const QString rest = text.mid(scheme.size());
    const int slash = rest.indexOf(QLatin1Char('/'));
    const QString authority = rest.left(slash);
    const int at = authority.lastIndexOf(QLatin1Char('@'));

    SshTarget result;
    const QString user = authority.left(std::max(at, 0));
    if (user.contains(QLatin1Char(':')))
        return tr("A password does not belong into the address; it is asked for.");
    result.user = decoded(user);
    QString port;
    if (!splitPort(authority.mid(at + 1), &result.host, &port))
        return tr("\"%1\" has a bracket too few or too many.").arg(text);
    // A leading dash would be read as an option by a proxy command.
    const QLatin1Char dash('-');
    if (result.host.isEmpty() || result.host.startsWith(dash) || !isPlain(result.host))
        return tr("\"%1\" names no host.").arg(text);
    if (at == 0 || result.user.startsWith(dash) || !isPlain(result.user))
        return tr("\"%1\" names no proper user.").arg(text);
    if (!port.isEmpty()) {
        bool isNumber = false;
        result.port = port.midRef(1).toUShort(&isNumber);
        if (!isNumber || result.port == 0)
            return tr("\"%1\" has no proper port.").arg(text);
    }
    if (slash >= 0 && slash + 1 < rest.size())
        result.directory = decoded(rest.mid(slash));
    if (result.directory.contains(QChar()))
        return tr("\"%1\" has no proper directory.").arg(text);
    *target = result;
    return {};
}

QString SshTarget::displayName() const
{
    QString name = user.isEmpty() ? host : user + QLatin1Char('@') + host;
    if (port != 0)
        name += QLatin1Char(':') + QString::number(port);
    return name;
}
