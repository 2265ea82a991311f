#include <tul-util-gui/filedialog/dialogstate_p.h>

#include <QDataStream>
#include <QIODevice>

namespace
{

constexpr qint32 magic = 190;
constexpr qint32 version = 3;

/// Reads a list element by element: the toolkit's own operator reserves room for as many elements
/// as the bytes claim.
template<class T> bool readList(QDataStream &stream, QList<T> &list)
{
    constexpr qint64 leastSizeOfElement = sizeof(quint32); // its own length
    quint32 count = 0;
    stream >> count;
    if (stream.status() != QDataStream::Ok
        || count > stream.device()->bytesAvailable() / leastSizeOfElement)
        return false;
    for (quint32 i = 0; i < count && stream.status() == QDataStream::Ok; ++i) {
        T element;
        stream >> element;
        list.append(element);
    }
    return stream.status() == QDataStream::Ok;
}

} // namespace

QByteArray DialogState::toBytes() const
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << magic << version << splitter << sidebarUrls << history << directory << header
           << static_cast<qint32>(viewMode);
    return bytes;
}

std::optional<DialogState> DialogState::fromBytes(const QByteArray &bytes)
{
    QDataStream stream(bytes);
    qint32 foundMagic = 0;
    qint32 foundVersion = 0;
    stream >> foundMagic >> foundVersion;
    if (foundMagic != magic || foundVersion != version)
        return {};

    DialogState state;
    stream >> state.splitter;
    if (!readList(stream, state.sidebarUrls) || !readList(stream, state.history))
        return {};
    qint32 mode = 0;
    stream >> state.directory >> state.header >> mode;
    if (stream.status() != QDataStream::Ok)
        return {};
    state.viewMode = mode == QFileDialog::Detail ? QFileDialog::Detail : QFileDialog::List;
    return state;
}
