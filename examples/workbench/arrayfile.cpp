#include <workbench/arrayfile.h>
#include <workbench/arrayslice.h>
#include <workbench/h5handle.h>

#include <QFile>
#include <QFileInfo>

#include <limits>
#include <optional>

struct ArrayFile::Private {
    QString name;
    H5Handle file;
    hsize_t length = 0; ///< bytes that the file must have for all of it to be there

    qint64 presentLength() const;
    QString fault() const;
};

struct ArrayDataset::Private {
    std::shared_ptr<const ArrayFile::Private> file;
    QString path;
    H5Handle dataset;
    H5Handle space;
    ArrayNumbers::Kind kind;
    QVector<ArrayDimension> dimensions;
};

namespace
{

/// A block of more numbers than this is not read at once.
constexpr long long mostNumbers = 1 << 24;

/// Labels are for headers; what is longer is no label.
constexpr int longestLabel = 40;

/// Large enough that the chunks under a screenful of cells are unpacked once.
constexpr std::size_t chunkCacheBytes = 32 << 20;
constexpr std::size_t chunkCacheSlots = 12'421;

herr_t takeFirst(unsigned /*depth*/, const H5E_error2_t *entry, void *text)
{
    *static_cast<QString *>(text) = QString::fromUtf8(entry->desc);
    return 1; // enough
}

/// What the HDF5 library gives as the innermost cause of its last error.
QString lastError()
{
    QString text;
    H5Ewalk2(H5E_DEFAULT, H5E_WALK_UPWARD, takeFirst, &text);
    return text.isEmpty() ? QStringLiteral("unknown error") : text;
}

std::optional<ArrayNumbers::Kind> numberKind(hid_t type)
{
    const H5T_class_t typeClass = H5Tget_class(type);
    if (typeClass == H5T_FLOAT)
        return ArrayNumbers::Kind::Real;
    if (typeClass != H5T_INTEGER && typeClass != H5T_ENUM)
        return std::nullopt;
    if (H5Tget_size(type) > sizeof(qint64))
        return std::nullopt;
    const H5Handle base(typeClass == H5T_ENUM ? H5Tget_super(type) : H5Tcopy(type), H5Tclose);
    return H5Tget_sign(base.id()) == H5T_SGN_NONE ? ArrayNumbers::Kind::Unsigned
                                                  : ArrayNumbers::Kind::Signed;
}

hid_t memoryType(ArrayNumbers::Kind kind)
{
    switch (kind) {
    case ArrayNumbers::Kind::Signed:
        return H5T_NATIVE_INT64;
    case ArrayNumbers::Kind::Unsigned:
        return H5T_NATIVE_UINT64;
    case ArrayNumbers::Kind::Real:
        break;
    }
    return H5T_NATIVE_DOUBLE;
}

QString typeName(hid_t type)
{
    const std::size_t bits = 8 * H5Tget_size(type);
    switch (H5Tget_class(type)) {
    case H5T_INTEGER:
        return (H5Tget_sign(type) == H5T_SGN_NONE ? QStringLiteral("uint%1")
                                                  : QStringLiteral("int%1"))
            .arg(bits);
    case H5T_FLOAT:
        return QStringLiteral("float%1").arg(bits);
    case H5T_ENUM:
        return ArrayFile::tr("enumeration");
    case H5T_STRING:
        return ArrayFile::tr("strings");
    case H5T_COMPOUND:
        return ArrayFile::tr("compounds");
    case H5T_REFERENCE:
        return ArrayFile::tr("references");
    default:
        return ArrayFile::tr("other data");
    }
}

/// The extents of a dataset, empty when it has no dimensions. No value when it is no such thing or
/// when an extent exceeds what a table can count.
std::optional<QVector<long long>> readExtents(hid_t space)
{
    const int rank = H5Sget_simple_extent_ndims(space);
    if (rank < 0)
        return std::nullopt;
    std::vector<hsize_t> extents(static_cast<std::size_t>(rank));
    H5Sget_simple_extent_dims(space, extents.data(), nullptr);
    QVector<long long> result;
    for (const hsize_t extent : extents) {
        if (extent > static_cast<hsize_t>(std::numeric_limits<long long>::max()))
            return std::nullopt;
        result.append(static_cast<long long>(extent));
    }
    return result;
}

/// The strings of an attribute of `count` strings, as they are stored: of one length, or each on
/// its own. Empty when the attribute is something else.
QStringList readStrings(hid_t attribute, int count)
{
    const H5Handle space(H5Aget_space(attribute), H5Sclose);
    const H5Handle type(H5Aget_type(attribute), H5Tclose);
    if (H5Tget_class(type.id()) != H5T_STRING || H5Sget_simple_extent_npoints(space.id()) != count)
        return {};

    QStringList result;
    if (H5Tis_variable_str(type.id()) > 0) {
        std::vector<char *> texts(static_cast<std::size_t>(count), nullptr);
        if (H5Aread(attribute, type.id(), texts.data()) < 0)
            return {};
        for (const char *const text : texts)
            result.append(QString::fromUtf8(text));
        H5Dvlen_reclaim(type.id(), space.id(), H5P_DEFAULT, texts.data());
        return result;
    }
    const std::size_t size = H5Tget_size(type.id());
    constexpr std::size_t tooLong = 1 << 16;
    if (size == 0 || size > tooLong)
        return {};
    std::vector<char> texts(size * static_cast<std::size_t>(count));
    if (H5Aread(attribute, type.id(), texts.data()) < 0)
        return {};
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        const char *const text = texts.data() + i * size;
        result.append(QString::fromUtf8(text, static_cast<int>(qstrnlen(text, size))));
    }
    return result;
}

QVector<ArrayDimension> readDimensions(hid_t dataset, const QVector<long long> &extents)
{
    QStringList labels;
    if (H5Aexists(dataset, "DIMENSION_LABELS") > 0) {
        const H5Handle attribute(H5Aopen(dataset, "DIMENSION_LABELS", H5P_DEFAULT), H5Aclose);
        labels = readStrings(attribute.id(), extents.size());
    }
    QVector<ArrayDimension> result;
    for (int i = 0; i < extents.size(); ++i) {
        const QString label = labels.value(i).simplified().left(longestLabel);
        const QString name = label.isEmpty() ? ArrayFile::tr("dim %1").arg(i) : label;
        result.append({name, extents.at(i)});
    }
    return result;
}

bool isInside(const ArrayBox &box, const QVector<ArrayDimension> &dimensions)
{
    if (box.start.size() != dimensions.size() || box.count.size() != dimensions.size())
        return false;
    long long numbers = 1;
    for (int i = 0; i < dimensions.size(); ++i) {
        const long long start = box.start.at(i);
        const long long count = box.count.at(i);
        const long long extent = dimensions.at(i).extent;
        if (start < 0 || start >= extent || count < 1 || count > extent - start
            || count > mostNumbers / numbers)
            return false;
        numbers *= count;
    }
    return true;
}

herr_t collectDataset(hid_t /*file*/, const char *name, const H5O_info_t *info, void *paths)
{
    if (info->type == H5O_TYPE_DATASET)
        static_cast<QStringList *>(paths)->append(QLatin1Char('/') + QString::fromUtf8(name));
    return 0;
}

} // namespace

qint64 ArrayFile::Private::presentLength() const
{
    // Asked of the open file: another one may have taken its name.
    void *descriptor = nullptr;
    QFile present;
    if (H5Fget_vfd_handle(file.id(), H5P_DEFAULT, &descriptor) < 0
        || !present.open(*static_cast<int *>(descriptor), QIODevice::ReadOnly))
        return std::numeric_limits<qint64>::max(); // not known to be shorter
    return present.size();
}

/// What happened to the file since it was opened. The HDF5 library does not notice: it reads what
/// is missing at the end of a file as zeros, and a removed file as long as it is open.
QString ArrayFile::Private::fault() const
{
    if (!QFileInfo::exists(name))
        return ArrayFile::tr("The file \"%1\" has disappeared.").arg(name);
    if (presentLength() < static_cast<qint64>(length))
        return ArrayFile::tr("The file \"%1\" has been cut short; its end is missing.").arg(name);
    return {};
}

ArrayDataset::ArrayDataset(std::unique_ptr<Private> data)
    : d(std::move(data))
{
}

ArrayDataset::~ArrayDataset() = default;

QString ArrayDataset::path() const
{
    return d->path;
}

const QVector<ArrayDimension> &ArrayDataset::dimensions() const
{
    return d->dimensions;
}

QString ArrayDataset::read(const ArrayBox &box, ArrayNumbers *numbers) const
{
    if (!isInside(box, d->dimensions))
        return tr("The dataset \"%1\" has no such block.").arg(d->path);

    const std::vector<hsize_t> start(box.start.begin(), box.start.end());
    const std::vector<hsize_t> count(box.count.begin(), box.count.end());
    hsize_t total = 1;
    for (const hsize_t extent : count)
        total *= extent;
    *numbers = ArrayNumbers(d->kind, static_cast<int>(total));
    const H5Handle memory(H5Screate_simple(1, &total, nullptr), H5Sclose);
    const bool done = H5Sselect_hyperslab(d->space.id(), H5S_SELECT_SET, start.data(), nullptr,
                                          count.data(), nullptr)
            >= 0
        && H5Dread(d->dataset.id(), memoryType(d->kind), memory.id(), d->space.id(), H5P_DEFAULT,
                   numbers->data())
            >= 0;
    const QString reason = done ? QString() : lastError();
    // Also after a success, and not before it: the file may go at any time.
    const QString fault = d->file->fault();
    if (done || !fault.isEmpty())
        return fault;
    return tr("The dataset \"%1\" cannot be read: %2.").arg(d->path, reason);
}

ArrayFile::ArrayFile()
    : d(std::make_shared<Private>())
{
}

ArrayFile::~ArrayFile() = default;

QString ArrayFile::open(const QString &fileName)
{
    // The library prints what goes wrong unless it is told not to; here the user is told instead.
    H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);

    const QFileInfo info(fileName);
    if (!info.exists())
        return tr("There is no file \"%1\".").arg(fileName);
    if (!info.isFile())
        return tr("\"%1\" is not a file.").arg(fileName);
    if (!info.isReadable())
        return tr("The file \"%1\" may not be read.").arg(fileName);
    const QByteArray nativeName = QFile::encodeName(info.absoluteFilePath());
    if (H5Fis_hdf5(nativeName.constData()) <= 0)
        return tr("\"%1\" is not an HDF5 file.").arg(fileName);

    const H5Handle access(H5Pcreate(H5P_FILE_ACCESS), H5Pclose);
    H5Pset_fapl_sec2(access.id());
    const auto opened = std::make_shared<Private>();
    opened->name = info.absoluteFilePath();
    opened->file = {H5Fopen(nativeName.constData(), H5F_ACC_RDONLY, access.id()), H5Fclose};
    if (!opened->file.isValid())
        return tr("The file \"%1\" cannot be opened: %2.").arg(fileName, lastError());
    H5Fget_filesize(opened->file.id(), &opened->length);
    const QString fault = opened->fault();
    if (!fault.isEmpty())
        return fault;
    d = opened;
    return {};
}

QString ArrayFile::fileName() const
{
    return d->name;
}

QVector<ArrayDatasetInfo> ArrayFile::datasets() const
{
    QStringList paths;
    if (H5Ovisit(d->file.id(), H5_INDEX_CRT_ORDER, H5_ITER_INC, collectDataset, &paths) < 0) {
        paths.clear();
        H5Ovisit(d->file.id(), H5_INDEX_NAME, H5_ITER_INC, collectDataset, &paths);
    }

    QVector<ArrayDatasetInfo> result;
    for (const QString &path : qAsConst(paths)) {
        const H5Handle dataset(H5Dopen2(d->file.id(), path.toUtf8().constData(), H5P_DEFAULT),
                               H5Dclose);
        const H5Handle type(H5Dget_type(dataset.id()), H5Tclose);
        const H5Handle space(H5Dget_space(dataset.id()), H5Sclose);
        const std::optional<QVector<long long>> extents = readExtents(space.id());
        const bool hasExtents = extents && !extents->isEmpty();
        QStringList factors;
        if (hasExtents) {
            for (const long long extent : *extents)
                factors.append(QString::number(extent));
        }
        const QString extentText
            = hasExtents ? factors.join(QStringLiteral(" \u00d7 ")) : tr("no dimensions");
        result.append({path, tr("%1, %2").arg(extentText, typeName(type.id())),
                       hasExtents && numberKind(type.id())});
    }
    return result;
}

std::shared_ptr<const ArrayDataset> ArrayFile::dataset(const QString &path, QString *error) const
{
    auto data = std::make_unique<ArrayDataset::Private>();
    data->file = d;
    data->path = path.startsWith(QLatin1Char('/')) ? path : QLatin1Char('/') + path;
    const QByteArray nativePath = data->path.toUtf8();
    const auto refuse = [&](const QString &message) {
        *error = message;
        return nullptr;
    };

    const QString fault = d->fault();
    if (!fault.isEmpty())
        return refuse(fault);
    const H5Handle access(H5Pcreate(H5P_DATASET_ACCESS), H5Pclose);
    H5Pset_chunk_cache(access.id(), chunkCacheSlots, chunkCacheBytes, H5D_CHUNK_CACHE_W0_DEFAULT);
    data->dataset = {H5Dopen2(d->file.id(), nativePath.constData(), access.id()), H5Dclose};
    if (!data->dataset.isValid()) {
        const QString reason = lastError();
        if (H5Oexists_by_name(d->file.id(), nativePath.constData(), H5P_DEFAULT) <= 0)
            return refuse(tr("The file \"%1\" has no dataset \"%2\".").arg(d->name, data->path));
        return refuse(tr("\"%1\" cannot be opened as a dataset: %2.").arg(data->path, reason));
    }
    data->space = {H5Dget_space(data->dataset.id()), H5Sclose};
    const H5Handle type(H5Dget_type(data->dataset.id()), H5Tclose);
    const std::optional<ArrayNumbers::Kind> kind = numberKind(type.id());
    if (!kind)
        return refuse(tr("The dataset \"%1\" cannot be shown: it holds %2, not numbers of at most "
                         "64 bits.")
                          .arg(data->path, typeName(type.id())));
    const std::optional<QVector<long long>> extents = readExtents(data->space.id());
    if (!extents)
        return refuse(tr("The dataset \"%1\" cannot be shown: a dimension is longer than a table "
                         "can count.")
                          .arg(data->path));
    if (extents->isEmpty())
        return refuse(
            tr("The dataset \"%1\" cannot be shown: it has no dimensions.").arg(data->path));
    data->kind = *kind;
    data->dimensions = readDimensions(data->dataset.id(), *extents);
    return std::shared_ptr<const ArrayDataset>(new ArrayDataset(std::move(data)));
}
