#include <support/testcase.h>
#include <workbench/arrayfile.h>
#include <workbench/arrayslice.h>
#include <workbench/h5handle.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <initializer_list>
#include <limits>
#include <numeric>

namespace
{

using Extents = std::vector<hsize_t>;

constexpr long long most = std::numeric_limits<long long>::max();

/// Pairs of a name and what to expect of it.
using Cases = std::initializer_list<std::pair<const char *, const char *>>;

H5Handle resizedType(hid_t base, std::size_t size)
{
    H5Handle type(H5Tcopy(base), H5Tclose);
    H5Tset_size(type.id(), size);
    return type;
}

H5Handle makeDataset(hid_t parent, const char *name, hid_t type, const Extents &extents,
                     hid_t properties = H5P_DEFAULT)
{
    const H5Handle space(
        H5Screate_simple(static_cast<int>(extents.size()), extents.data(), nullptr), H5Sclose);
    return {H5Dcreate2(parent, name, type, space.id(), H5P_DEFAULT, properties, H5P_DEFAULT),
            H5Dclose};
}

template<typename T>
void makeNumbers(hid_t parent, const char *name, hid_t fileType, hid_t memoryType,
                 const std::vector<T> &values)
{
    const H5Handle dataset = makeDataset(parent, name, fileType, {values.size()});
    H5Dwrite(dataset.id(), memoryType, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data());
}

void makeLabelled(hid_t parent, const char *name, hid_t type, hsize_t count, const void *labels)
{
    const H5Handle dataset = makeDataset(parent, name, H5T_STD_I16LE, {4, 5});
    const H5Handle space(H5Screate_simple(1, &count, nullptr), H5Sclose);
    const H5Handle attribute(
        H5Acreate2(dataset.id(), "DIMENSION_LABELS", type, space.id(), H5P_DEFAULT, H5P_DEFAULT),
        H5Aclose);
    H5Awrite(attribute.id(), type, labels);
}

} // namespace

class TestArrayFile : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void numbersOfEveryTypeAreReadExactly();
    void blocksComeInTheOrderOfTheFileOrAreRefused();
    void labelsNameTheDimensions();
    void whatIsNoArrayOfNumbersIsRefused();
    void whatIsNoReadableFileIsRefusedAndTheOpenOneStays();
    void fileThatGoesOrIsCutShortWhileOpenIsNoticed();

private:
    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    H5Handle createFile(const char *name) const;
    void makeLong(const char *name) const;

    const QTemporaryDir m_folder;
    ArrayFile m_file;
    QString m_error;
    ArrayNumbers m_read;
};

H5Handle TestArrayFile::createFile(const char *name) const
{
    return {H5Fcreate(QFile::encodeName(path(name)).constData(), H5F_ACC_TRUNC, H5P_DEFAULT,
                      H5P_DEFAULT),
            H5Fclose};
}

void TestArrayFile::makeLong(const char *name) const
{
    makeNumbers(createFile(name).id(), "set", H5T_STD_I8LE, H5T_NATIVE_INT8,
                std::vector<qint8>(500'000, 1));
}

void TestArrayFile::initTestCase()
{
    {
        const H5Handle file = createFile("arrays.h5");
        const std::vector<qint64> longs{-most - 1, most};
        const std::vector<double> reals{0.1, -INFINITY, NAN};
        makeNumbers(file.id(), "int16", H5T_STD_I16BE, H5T_NATIVE_INT64, longs);
        makeNumbers(file.id(), "int64", H5T_STD_I64LE, H5T_NATIVE_INT64, longs);
        makeNumbers(file.id(), "uint64", H5T_STD_U64LE, H5T_NATIVE_UINT64,
                    std::vector<quint64>{~quint64(0)});
        makeNumbers(file.id(), "float32", H5T_IEEE_F32LE, H5T_NATIVE_DOUBLE, reals);
        const H5Handle enumeration(H5Tenum_create(H5T_STD_I8LE), H5Tclose);
        const std::vector<qint8> one{1};
        H5Tenum_insert(enumeration.id(), "TRUE", one.data());
        makeNumbers(file.id(), "enumeration", enumeration.id(), enumeration.id(), one);

        int plain[4 * 5];
        std::iota(std::begin(plain), std::end(plain), 0);
        const H5Handle plainSet = makeDataset(file.id(), "plain", H5T_STD_I16LE, {4, 5});
        H5Dwrite(plainSet.id(), H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, plain);
        makeDataset(file.id(), "none", H5T_STD_I16LE, {4, 0});
        const H5Handle chunked(H5Pcreate(H5P_DATASET_CREATE), H5Pclose);
        H5Pset_chunk(chunked.id(), 2, Extents{1, 1}.data());
        makeDataset(file.id(), "large", H5T_STD_I32LE, Extents(2, hsize_t(most)), chunked.id());

        const std::string longText = " " + std::string(1000, 'x');
        const char *const texts[] = {longText.c_str(), nullptr};
        makeLabelled(file.id(), "texts", resizedType(H5T_C_S1, H5T_VARIABLE).id(), 2, texts);
        makeLabelled(file.id(), "padded", resizedType(H5T_C_S1, 5).id(), 2, "lat\0\0lon\0\0");
        makeLabelled(file.id(), "few", resizedType(H5T_C_S1, 3).id(), 1, "lat");
        makeLabelled(file.id(), "integers", H5T_NATIVE_INT, 2, plain);

        makeDataset(file.id(), "strings", resizedType(H5T_C_S1, H5T_VARIABLE).id(), {2});
        makeDataset(file.id(), "long", resizedType(H5T_STD_I64LE, 16).id(), {2});
        const H5Handle null(H5Screate(H5S_NULL), H5Sclose);
        H5Dclose(H5Dcreate2(file.id(), "null", H5T_STD_I16LE, null.id(), H5P_DEFAULT, H5P_DEFAULT,
                            H5P_DEFAULT));
    }
    QCOMPARE(m_file.open(path("arrays.h5")), QString());
}

void TestArrayFile::numbersOfEveryTypeAreReadExactly()
{
    for (const auto &[name, texts] : Cases{{"int16", "-32768 32767 "},
                                           {"int64", "-9223372036854775808 9223372036854775807 "},
                                           {"uint64", "18446744073709551615 "},
                                           {"float32", "0.1 -inf nan "},
                                           {"enumeration", "1 "}}) {
        const auto dataset = m_file.dataset(QString::fromLatin1(name), &m_error);
        QVERIFY2(dataset, qPrintable(m_error));
        QCOMPARE(dataset->read({{0}, {dataset->dimensions().first().extent}}, &m_read), QString());
        QString readTexts;
        for (int i = 0; i < m_read.count(); ++i)
            readTexts += m_read.text(i) + QLatin1Char(' ');
        QCOMPARE(readTexts, QString::fromLatin1(texts));
    }
}

void TestArrayFile::blocksComeInTheOrderOfTheFileOrAreRefused()
{
    const auto plain = m_file.dataset(QStringLiteral("/plain"), &m_error);
    QCOMPARE(plain->read({{1, 2}, {2, 3}}, &m_read), QString());
    QCOMPARE(m_read.count(), 6);
    QCOMPARE(m_read.text(1), QStringLiteral("8"));
    QCOMPARE(m_read.text(3), QStringLiteral("12"));
    for (const ArrayBox &block :
         {ArrayBox{{0}, {1}}, ArrayBox{{0, -1}, {1, 1}}, ArrayBox{{3, 0}, {2, 1}},
          ArrayBox{{0, 0}, {0, 1}}, ArrayBox{{1, 1}, {most, most}}, ArrayBox{{most, 1}, {1, 1}}})
        QVERIFY(!plain->read(block, &m_read).isEmpty());

    const auto none = m_file.dataset(QStringLiteral("none"), &m_error);
    QVERIFY(!none->read({{0, 0}, {1, 1}}, &m_read).isEmpty());
    const auto large = m_file.dataset(QStringLiteral("large"), &m_error);
    QVERIFY2(large, qPrintable(m_error));
    QCOMPARE(large->read({{most - 1, most - 2}, {1, 2}}, &m_read), QString());
    QVERIFY(!large->read({{0, 0}, {most, most}}, &m_read).isEmpty());
}

void TestArrayFile::labelsNameTheDimensions()
{
    const QByteArray longest = QByteArray(40, 'x') + ",dim 1";
    for (const auto &[name, labels] : Cases{{"plain", "dim 0,dim 1"},
                                            {"texts", longest.constData()},
                                            {"padded", "lat,lon"},
                                            {"few", "dim 0,dim 1"},
                                            {"integers", "dim 0,dim 1"}}) {
        const auto dimensions = m_file.dataset(QString::fromLatin1(name), &m_error)->dimensions();
        QCOMPARE(dimensions.at(0).name + QLatin1Char(',') + dimensions.at(1).name,
                 QString::fromLatin1(labels));
    }
}

void TestArrayFile::whatIsNoArrayOfNumbersIsRefused()
{
    for (const auto &[name, word] : Cases{{"strings", "strings"},
                                          {"long", "64 bits"},
                                          {"null", "no dimensions"},
                                          {"/", "as a dataset"},
                                          {"%1/x", "no dataset"},
                                          {"", "dataset"}}) {
        const QString path = QString::fromLatin1(name);
        QVERIFY(!m_file.dataset(path, &m_error));
        QVERIFY2(m_error.contains(path) && m_error.contains(QLatin1String(word)),
                 qPrintable(m_error));
    }
    const ArrayDatasetInfo last = m_file.datasets().last();
    QCOMPARE(last.path + last.shape, QStringLiteral("/uint641, uint64"));
    QVERIFY(last.isShowable && !m_file.datasets().at(7).isShowable);
}

void TestArrayFile::whatIsNoReadableFileIsRefusedAndTheOpenOneStays()
{
    QVERIFY(QFile(path("empty.h5")).open(QIODevice::WriteOnly));
    makeLong("short.h5");
    QVERIFY(QFile::resize(path("short.h5"), 3000));
    for (const auto &[name, word] : Cases{{"missing.h5", "no file"},
                                          {".", "not a file"},
                                          {"empty.h5", "not an HDF5 file"},
                                          {"short.h5", "truncated"}}) {
        const QString error = m_file.open(path(name));
        QVERIFY2(error.contains(path(name)) && error.contains(QLatin1String(word)),
                 qPrintable(error));
        QCOMPARE(m_file.fileName(), path("arrays.h5"));
        QVERIFY(!m_file.datasets().isEmpty());
    }
}

void TestArrayFile::fileThatGoesOrIsCutShortWhileOpenIsNoticed()
{
    ArrayFile file;
    makeLong("cut.h5");
    QCOMPARE(file.open(path("cut.h5")), QString());
    const auto cut = file.dataset(QStringLiteral("set"), &m_error);
    QVERIFY(QFile::resize(path("cut.h5"), 3000));
    // Without a look at its length it would read as zeros.
    QVERIFY(cut->read({{400'000}, {10}}, &m_read).contains(QStringLiteral("cut short")));
    // The HDF5 library hands out its open file again, and with it the length of yesterday.
    QVERIFY(!ArrayFile().open(path("cut.h5")).isEmpty());

    makeLong("gone.h5");
    QCOMPARE(file.open(path("gone.h5")), QString());
    const auto gone = file.dataset(QStringLiteral("set"), &m_error);
    QVERIFY(QFile::remove(path("gone.h5")));
    QVERIFY(gone->read({{0}, {10}}, &m_read).contains(QStringLiteral("disappeared")));
    QVERIFY(!file.dataset(QStringLiteral("other"), &m_error));
    QVERIFY2(m_error.contains(QStringLiteral("disappeared")), qPrintable(m_error));
}

QTEST_APPLESS_MAIN(TestArrayFile)
#include "tst_arrayfile.moc"
