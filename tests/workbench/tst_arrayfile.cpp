#include <support/testcase.h>
#include <workbench/arrayfile.h>
#include <workbench/arrayslice.h>
#include <workbench/h5handle.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <functional>
#include <limits>

namespace
{

using Extents = std::vector<hsize_t>;
using Make = std::function<void(hid_t parent)>;
using Label = std::function<void(const H5Handle &dataset)>;

H5Handle createSpace(const Extents &extents)
{
    return {extents.empty()
                ? H5Screate(H5S_SCALAR)
                : H5Screate_simple(static_cast<int>(extents.size()), extents.data(), nullptr),
            H5Sclose};
}

H5Handle stringType(std::size_t size)
{
    H5Handle type(H5Tcopy(H5T_C_S1), H5Tclose);
    H5Tset_size(type.id(), size);
    return type;
}

/// Writes `values`, which are of the type `memoryType`, as a dataset of the type `fileType`.
H5Handle makeDataset(hid_t parent, const char *name, hid_t fileType, const Extents &extents,
                     hid_t memoryType = -1, const void *values = nullptr)
{
    const H5Handle space = createSpace(extents);
    H5Handle dataset(
        H5Dcreate2(parent, name, fileType, space.id(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
        H5Dclose);
    if (values)
        H5Dwrite(dataset.id(), memoryType, H5S_ALL, H5S_ALL, H5P_DEFAULT, values);
    return dataset;
}

template<typename T> Make numbers(hid_t fileType, hid_t memoryType, const std::vector<T> &values)
{
    return [=](hid_t parent) {
        makeDataset(parent, "set", fileType, {values.size()}, memoryType, values.data());
    };
}

void setAttribute(const H5Handle &dataset, hid_t type, hsize_t count, const void *values)
{
    const H5Handle space = createSpace({count});
    const H5Handle attribute(
        H5Acreate2(dataset.id(), "DIMENSION_LABELS", type, space.id(), H5P_DEFAULT, H5P_DEFAULT),
        H5Aclose);
    H5Awrite(attribute.id(), type, values);
}

ArrayBox box(const QVector<long long> &start, const QVector<long long> &count)
{
    return {start, count};
}

} // namespace

Q_DECLARE_METATYPE(Label)
Q_DECLARE_METATYPE(Make)

class TestArrayFile : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void numbersOfEveryTypeAreReadExactly_data();
    void numbersOfEveryTypeAreReadExactly();
    void blocksComeInTheOrderOfTheFile();
    void blocksOutsideTheDatasetAreRefused();
    void labelsNameTheDimensions_data();
    void labelsNameTheDimensions();
    void datasetsAreListedInTheOrderOfCreationOrByName();
    void whatIsNoArrayOfNumbersIsRefused_data();
    void whatIsNoArrayOfNumbersIsRefused();
    void whatIsNoReadableFileIsRefusedAndTheOpenOneStays_data();
    void whatIsNoReadableFileIsRefusedAndTheOpenOneStays();
    void fileThatGoesOrIsCutShortWhileOpenIsNoticed();
    void extentsUpToTheLimitsAreOpenedAndRead();

private:
    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    QString makeFile(const char *name, const Make &make, bool keepOrder = false);

    const QTemporaryDir m_folder;
};

QString TestArrayFile::makeFile(const char *name, const Make &make, bool keepOrder)
{
    const H5Handle properties(H5Pcreate(H5P_FILE_CREATE), H5Pclose);
    if (keepOrder)
        H5Pset_link_creation_order(properties.id(), H5P_CRT_ORDER_TRACKED | H5P_CRT_ORDER_INDEXED);
    const QString fileName = path(name);
    const H5Handle file(H5Fcreate(QFile::encodeName(fileName).constData(), H5F_ACC_TRUNC,
                                  properties.id(), H5P_DEFAULT),
                        H5Fclose);
    make(file.id());
    return fileName;
}

void TestArrayFile::numbersOfEveryTypeAreReadExactly_data()
{
    QTest::addColumn<Make>("make");
    QTest::addColumn<QStringList>("texts");

    const double tenth = 0.1;
    const double huge = -1.2345678e300;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::vector<qint64> small{-128, 0, 127};
    const std::vector<qint64> longs{std::numeric_limits<qint64>::min(),
                                    std::numeric_limits<qint64>::max()};
    const std::vector<quint64> unsignedLongs{0, std::numeric_limits<quint64>::max()};
    const std::vector<double> reals{tenth, -INFINITY, nan};
    const QStringList smallTexts{QStringLiteral("-128"), QStringLiteral("0"),
                                 QStringLiteral("127")};
    const QStringList realTexts{QStringLiteral("0.1"), QStringLiteral("-inf"),
                                QStringLiteral("nan")};

    QTest::newRow("int8") << numbers(H5T_STD_I8LE, H5T_NATIVE_INT64, small) << smallTexts;
    QTest::newRow("int32, other byte order")
        << numbers(H5T_STD_I32BE, H5T_NATIVE_INT64, small) << smallTexts;
    QTest::newRow("int64") << numbers(H5T_STD_I64LE, H5T_NATIVE_INT64, longs)
                           << QStringList{QStringLiteral("-9223372036854775808"),
                                          QStringLiteral("9223372036854775807")};
    QTest::newRow("uint8") << numbers(H5T_STD_U8LE, H5T_NATIVE_INT64, std::vector<qint64>{255})
                           << QStringList{QStringLiteral("255")};
    QTest::newRow("uint64") << numbers(H5T_STD_U64LE, H5T_NATIVE_UINT64, unsignedLongs)
                            << QStringList{QStringLiteral("0"),
                                           QStringLiteral("18446744073709551615")};
    QTest::newRow("float32") << numbers(H5T_IEEE_F32LE, H5T_NATIVE_DOUBLE, reals) << realTexts;
    QTest::newRow("float64") << numbers(H5T_IEEE_F64BE, H5T_NATIVE_DOUBLE,
                                        std::vector<double>{tenth, huge})
                             << QStringList{QStringLiteral("0.1"), QStringLiteral("-1.23457e+300")};
    const Make enumeration = [](hid_t parent) {
        const H5Handle type(H5Tenum_create(H5T_STD_I8LE), H5Tclose);
        const signed char values[] = {0, 1};
        H5Tenum_insert(type.id(), "FALSE", &values[0]);
        H5Tenum_insert(type.id(), "TRUE", &values[1]);
        makeDataset(parent, "set", type.id(), {2}, type.id(), values);
    };
    QTest::newRow("enumeration") << enumeration
                                 << QStringList{QStringLiteral("0"), QStringLiteral("1")};
}

void TestArrayFile::numbersOfEveryTypeAreReadExactly()
{
    QFETCH(Make, make);
    QFETCH(QStringList, texts);

    ArrayFile file;
    QCOMPARE(file.open(makeFile("types.h5", make)), QString());
    QString error;
    const auto dataset = file.dataset(QStringLiteral("set"), &error);
    QVERIFY2(dataset, qPrintable(error));
    QCOMPARE(dataset->path(), QStringLiteral("/set"));
    ArrayNumbers read;
    QCOMPARE(dataset->read(box({0}, {texts.size()}), &read), QString());
    QStringList readTexts;
    for (int i = 0; i < read.count(); ++i)
        readTexts.append(read.text(i));
    QCOMPARE(readTexts, texts);
}

void TestArrayFile::blocksComeInTheOrderOfTheFile()
{
    const Make make = [](hid_t parent) {
        int values[4 * 5];
        for (int i = 0; i < 20; ++i)
            values[i] = i;
        makeDataset(parent, "set", H5T_STD_I16LE, {4, 5}, H5T_NATIVE_INT, values);
    };
    ArrayFile file;
    QCOMPARE(file.open(makeFile("blocks.h5", make)), QString());
    QString error;
    const auto dataset = file.dataset(QStringLiteral("/set"), &error);
    ArrayNumbers read;
    QCOMPARE(dataset->read(box({1, 2}, {2, 3}), &read), QString());
    QCOMPARE(read.count(), 6);
    QCOMPARE(read.text(1), QStringLiteral("8"));
    QCOMPARE(read.text(3), QStringLiteral("12"));
}

void TestArrayFile::blocksOutsideTheDatasetAreRefused()
{
    constexpr long long most = std::numeric_limits<long long>::max();
    const Make make = [](hid_t parent) { makeDataset(parent, "set", H5T_STD_I16LE, {4, 0, 5}); };
    const Make plain = [](hid_t parent) { makeDataset(parent, "set", H5T_STD_I16LE, {4, 5}); };
    QString error;
    ArrayNumbers read;

    ArrayFile empty;
    QCOMPARE(empty.open(makeFile("none.h5", make)), QString());
    const auto noNumbers = empty.dataset(QStringLiteral("set"), &error);
    QVERIFY(noNumbers);
    QVERIFY(!noNumbers->read(box({0, 0, 0}, {1, 1, 1}), &read).isEmpty());

    ArrayFile file;
    QCOMPARE(file.open(makeFile("some.h5", plain)), QString());
    const auto dataset = file.dataset(QStringLiteral("set"), &error);
    const QVector<ArrayBox> wrong{
        box({0}, {1}),       box({0, -1}, {1, 1}),      box({0, 5}, {1, 1}),   box({3, 0}, {2, 1}),
        box({0, 0}, {0, 1}), box({1, 1}, {most, most}), box({most, 1}, {1, 1})};
    for (const ArrayBox &block : wrong)
        QVERIFY(!dataset->read(block, &read).isEmpty());
}

void TestArrayFile::labelsNameTheDimensions_data()
{
    QTest::addColumn<Label>("label");
    QTest::addColumn<QStringList>("names");

    const QStringList given{QStringLiteral("lat"), QStringLiteral("lon")};
    const QStringList numbered{QStringLiteral("dim 0"), QStringLiteral("dim 1")};
    const QString longest(40, QLatin1Char('x'));

    QTest::newRow("none") << Label([](const H5Handle &) {}) << numbered;
    QTest::newRow("variable length") << Label([](const H5Handle &dataset) {
        const char *const texts[] = {" lat\n", "lon"};
        setAttribute(dataset, stringType(H5T_VARIABLE).id(), 2, texts);
    }) << given;
    QTest::newRow("one unset") << Label([](const H5Handle &dataset) {
        const char *const texts[] = {nullptr, "lon"};
        setAttribute(dataset, stringType(H5T_VARIABLE).id(), 2, texts);
    }) << QStringList{QStringLiteral("dim 0"), QStringLiteral("lon")};
    QTest::newRow("one length, without an end") << Label([](const H5Handle &dataset) {
        setAttribute(dataset, stringType(3).id(), 2, "latlon");
    }) << given;
    QTest::newRow("one length, filled up") << Label([](const H5Handle &dataset) {
        setAttribute(dataset, stringType(5).id(), 2, "lat\0\0lon\0\0");
    }) << given;
    QTest::newRow("too long") << Label([](const H5Handle &dataset) {
        const std::string text(1000, 'x');
        const char *const texts[] = {text.c_str(), ""};
        setAttribute(dataset, stringType(H5T_VARIABLE).id(), 2, texts);
    }) << QStringList{longest, QStringLiteral("dim 1")};
    QTest::newRow("too few") << Label([](const H5Handle &dataset) {
        setAttribute(dataset, stringType(3).id(), 1, "lat");
    }) << numbered;
    QTest::newRow("no strings") << Label([](const H5Handle &dataset) {
        const int values[] = {1, 2};
        setAttribute(dataset, H5T_NATIVE_INT, 2, values);
    }) << numbered;
}

void TestArrayFile::labelsNameTheDimensions()
{
    QFETCH(Label, label);
    QFETCH(QStringList, names);

    ArrayFile file;
    const QString fileName = makeFile("labels.h5", [&](hid_t parent) {
        label(makeDataset(parent, "set", H5T_STD_I16LE, {4, 5}));
    });
    QCOMPARE(file.open(fileName), QString());
    QString error;
    const auto dataset = file.dataset(QStringLiteral("set"), &error);
    QCOMPARE(dataset->dimensions().size(), 2);
    QCOMPARE(dataset->dimensions().at(0).name, names.at(0));
    QCOMPARE(dataset->dimensions().at(1).name, names.at(1));
    QCOMPARE(dataset->dimensions().at(1).extent, 5LL);
}

void TestArrayFile::datasetsAreListedInTheOrderOfCreationOrByName()
{
    const Make make = [](hid_t parent) {
        makeDataset(parent, "z", H5T_STD_U16LE, {3, 4});
        const H5Handle properties(H5Pcreate(H5P_GROUP_CREATE), H5Pclose);
        H5Pset_link_creation_order(properties.id(), H5P_CRT_ORDER_TRACKED | H5P_CRT_ORDER_INDEXED);
        const H5Handle group(H5Gcreate2(parent, "group", H5P_DEFAULT, properties.id(), H5P_DEFAULT),
                             H5Gclose);
        makeDataset(group.id(), "inner", H5T_IEEE_F64LE, {});
        makeDataset(parent, "a", stringType(4).id(), {2});
    };
    const auto list = [](const QString &fileName) {
        ArrayFile file;
        file.open(fileName);
        QStringList result;
        const QVector<ArrayDatasetInfo> datasets = file.datasets();
        for (const ArrayDatasetInfo &info : datasets)
            result.append(
                QStringLiteral("%1: %2%3")
                    .arg(info.path, info.shape, QLatin1String(info.isShowable ? "" : " (no)")));
        return result;
    };
    const QString z = QStringLiteral("/z: 3 \u00d7 4, uint16");
    const QString inner = QStringLiteral("/group/inner: no dimensions, float64 (no)");
    const QString a = QStringLiteral("/a: 2, strings (no)");
    QCOMPARE(list(makeFile("order.h5", make, true)), (QStringList{z, inner, a}));
    QCOMPARE(list(makeFile("names.h5", make, false)), (QStringList{a, inner, z}));
}

void TestArrayFile::whatIsNoArrayOfNumbersIsRefused_data()
{
    QTest::addColumn<QString>("dataset");
    QTest::addColumn<QString>("word"); // of the message

    QTest::newRow("strings") << QStringLiteral("/strings") << QStringLiteral("strings");
    QTest::newRow("compound") << QStringLiteral("/compound") << QStringLiteral("compounds");
    QTest::newRow("references") << QStringLiteral("/reference") << QStringLiteral("references");
    QTest::newRow("long integers") << QStringLiteral("/long") << QStringLiteral("64 bits");
    QTest::newRow("scalar") << QStringLiteral("/scalar") << QStringLiteral("no dimensions");
    QTest::newRow("null") << QStringLiteral("/null") << QStringLiteral("no dimensions");
    QTest::newRow("group") << QStringLiteral("/group") << QStringLiteral("as a dataset");
    QTest::newRow("missing") << QStringLiteral("/%1/x") << QStringLiteral("no dataset");
    QTest::newRow("no name") << QString() << QStringLiteral("dataset");
}

void TestArrayFile::whatIsNoArrayOfNumbersIsRefused()
{
    QFETCH(QString, dataset);
    QFETCH(QString, word);

    const Make make = [](hid_t parent) {
        makeDataset(parent, "strings", stringType(H5T_VARIABLE).id(), {2});
        const H5Handle compound(H5Tcreate(H5T_COMPOUND, 8), H5Tclose);
        H5Tinsert(compound.id(), "x", 0, H5T_NATIVE_INT);
        makeDataset(parent, "compound", compound.id(), {2});
        makeDataset(parent, "reference", H5T_STD_REF_OBJ, {2});
        const H5Handle longType(H5Tcopy(H5T_STD_I64LE), H5Tclose);
        H5Tset_size(longType.id(), 16);
        makeDataset(parent, "long", longType.id(), {2});
        makeDataset(parent, "scalar", H5T_STD_I16LE, {});
        const H5Handle null(H5Screate(H5S_NULL), H5Sclose);
        const H5Handle set(H5Dcreate2(parent, "null", H5T_STD_I16LE, null.id(), H5P_DEFAULT,
                                      H5P_DEFAULT, H5P_DEFAULT),
                           H5Dclose);
        const H5Handle group(H5Gcreate2(parent, "group", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
                             H5Gclose);
    };
    ArrayFile file;
    QCOMPARE(file.open(makeFile("refused.h5", make)), QString());
    QString error;
    QVERIFY(!file.dataset(dataset, &error));
    QVERIFY2(error.contains(word) && error.contains(dataset), qPrintable(error));
}

void TestArrayFile::whatIsNoReadableFileIsRefusedAndTheOpenOneStays_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("word");

    QTest::newRow("missing") << QStringLiteral("missing.h5") << QStringLiteral("no file");
    QTest::newRow("folder") << QStringLiteral(".") << QStringLiteral("not a file");
    QTest::newRow("text") << QStringLiteral("text.h5") << QStringLiteral("not an HDF5 file");
    QTest::newRow("empty") << QStringLiteral("empty.h5") << QStringLiteral("not an HDF5 file");
    QTest::newRow("cut short") << QStringLiteral("cut.h5") << QStringLiteral("truncated");
}

void TestArrayFile::whatIsNoReadableFileIsRefusedAndTheOpenOneStays()
{
    QFETCH(QString, name);
    QFETCH(QString, word);

    const auto write = [&](const char *fileName, const QByteArray &bytes) {
        QFile file(path(fileName));
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    };
    QVERIFY(write("text.h5", "day,station\n1,2\n"));
    QVERIFY(write("empty.h5", QByteArray()));
    const Make make = numbers(H5T_STD_I8LE, H5T_NATIVE_INT64, std::vector<qint64>(5000, 1));
    QFile cut(makeFile("cut.h5", make));
    QVERIFY(cut.resize(cut.size() / 2));

    ArrayFile file;
    QCOMPARE(file.open(makeFile("good.h5", make)), QString());
    const QString error = file.open(m_folder.filePath(name));
    QVERIFY2(error.contains(word) && error.contains(name), qPrintable(error));
    QCOMPARE(file.fileName(), path("good.h5"));
    QCOMPARE(file.datasets().size(), 1);
}

void TestArrayFile::fileThatGoesOrIsCutShortWhileOpenIsNoticed()
{
    const Make make = numbers(H5T_STD_I8LE, H5T_NATIVE_INT64, std::vector<qint64>(500'000, 1));
    ArrayNumbers read;
    QString error;

    ArrayFile cut;
    QCOMPARE(cut.open(makeFile("cut.h5", make)), QString());
    const auto cutSet = cut.dataset(QStringLiteral("set"), &error);
    QVERIFY(QFile::resize(path("cut.h5"), 3000));
    // Without a look at its length it would read as zeros.
    QVERIFY(cutSet->read(box({400'000}, {10}), &read).contains(QStringLiteral("cut short")));
    // The HDF5 library hands out its open file again, and with it the length of yesterday.
    QVERIFY(!ArrayFile().open(path("cut.h5")).isEmpty());

    ArrayFile gone;
    QCOMPARE(gone.open(makeFile("gone.h5", make)), QString());
    const auto goneSet = gone.dataset(QStringLiteral("set"), &error);
    QVERIFY(QFile::remove(path("gone.h5")));
    QVERIFY(goneSet->read(box({0}, {10}), &read).contains(QStringLiteral("disappeared")));
    QVERIFY(!gone.dataset(QStringLiteral("other"), &error));
    QVERIFY2(error.contains(QStringLiteral("disappeared")), qPrintable(error));
}

void TestArrayFile::extentsUpToTheLimitsAreOpenedAndRead()
{
    constexpr long long most = std::numeric_limits<long long>::max();
    const Make make = [](hid_t parent) {
        const Extents extents{static_cast<hsize_t>(most), static_cast<hsize_t>(most)};
        const Extents chunk{1, 1};
        const H5Handle properties(H5Pcreate(H5P_DATASET_CREATE), H5Pclose);
        H5Pset_chunk(properties.id(), 2, chunk.data());
        const H5Handle space = createSpace(extents);
        const H5Handle large(H5Dcreate2(parent, "large", H5T_STD_I32LE, space.id(), H5P_DEFAULT,
                                        properties.id(), H5P_DEFAULT),
                             H5Dclose);
        const std::vector<int> values(1, 7);
        makeDataset(parent, "deep", H5T_STD_I32LE, Extents(32, 1), H5T_NATIVE_INT, values.data());
    };
    ArrayFile file;
    QCOMPARE(file.open(makeFile("limits.h5", make)), QString());
    QString error;
    ArrayNumbers read;
    const auto large = file.dataset(QStringLiteral("large"), &error);
    QVERIFY2(large, qPrintable(error));
    QCOMPARE(large->read(box({most - 1, most - 2}, {1, 2}), &read), QString());
    QCOMPARE(read.text(1), QStringLiteral("0"));
    const auto deep = file.dataset(QStringLiteral("deep"), &error);
    QCOMPARE(deep->dimensions().size(), 32);
    QCOMPARE(deep->read(box(QVector<long long>(32, 0), QVector<long long>(32, 1)), &read),
             QString());
    QCOMPARE(read.text(0), QStringLiteral("7"));
}

QTEST_APPLESS_MAIN(TestArrayFile)
#include "tst_arrayfile.moc"
