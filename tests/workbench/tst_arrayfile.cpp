#include <support/literal.h>
#include <support/newh5file.h>
#include <support/testcase.h>
#include <workbench/arrayfile.h>
#include <workbench/arrayslice.h>

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

void addLabelled(const NewH5File &file, const char *name, hid_t type, hsize_t count,
                 const void *labels)
{
    const H5Handle set = file.add(name, H5T_STD_I16LE, {4, 5});
    const H5Handle space(H5Screate_simple(1, &count, nullptr), H5Sclose);
    const H5Handle attribute(
        H5Acreate2(set.id(), "DIMENSION_LABELS", type, space.id(), H5P_DEFAULT, H5P_DEFAULT),
        H5Aclose);
    H5Awrite(attribute.id(), type, labels);
}

} // namespace

class TestArrayFile : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        {
            const NewH5File file(path("arrays.h5"));
            const qint64 longs[] = {-most - 1, most, -1};
            const double reals[] = {0.1, -INFINITY, NAN};
            file.add("int16", H5T_STD_I16BE, {2}, longs);
            file.add("int64", H5T_STD_I64LE, {2}, longs);
            file.add("uint64", H5T_STD_U64LE, {1}, &longs[2], H5T_NATIVE_UINT64);
            file.add("float32", H5T_IEEE_F32LE, {3}, reals, H5T_NATIVE_DOUBLE);
            const H5Handle enumeration(H5Tenum_create(H5T_STD_I8LE), H5Tclose);
            H5Tenum_insert(enumeration.id(), "TRUE", "\1");
            file.add("enumeration", enumeration.id(), {1}, "\1", enumeration.id());
            qint64 plain[4 * 5];
            std::iota(std::begin(plain), std::end(plain), 0);
            file.add("plain", H5T_STD_I16LE, {4, 5}, plain);
            file.add("none", H5T_STD_I16LE, {4, 0});
            const H5Handle chunked(H5Pcreate(H5P_DATASET_CREATE), H5Pclose);
            H5Pset_chunk(chunked.id(), 2, Extents{1, 1}.data());
            file.add("large", H5T_STD_I32LE, Extents(2, hsize_t(most)), nullptr, 0, chunked.id());

            const QByteArray longText = ' ' + QByteArray(1000, 'x');
            const char *const texts[] = {longText.constData(), nullptr};
            addLabelled(file, "texts", resizedType(H5T_C_S1, H5T_VARIABLE).id(), 2, texts);
            addLabelled(file, "padded", resizedType(H5T_C_S1, 5).id(), 2, "lat\0\0lon\0\0");
            addLabelled(file, "few", resizedType(H5T_C_S1, 3).id(), 1, "lat");
            addLabelled(file, "integers", H5T_NATIVE_INT64, 2, plain);

            file.add("strings", resizedType(H5T_C_S1, H5T_VARIABLE).id(), {2});
            file.add("long", resizedType(H5T_STD_I64LE, 16).id(), {2});
            const H5Handle null(H5Screate(H5S_NULL), H5Sclose);
            H5Dclose(H5Dcreate2(file.file.id(), "null", H5T_STD_I16LE, null.id(), H5P_DEFAULT,
                                H5P_DEFAULT, H5P_DEFAULT));
        }
        QCOMPARE(m_file.open(path("arrays.h5")), QString());
    }

    void numbersOfEveryTypeAreReadExactly()
    {
        for (const auto &[name, texts] :
             Cases{{"int16", "-32768 32767 "},
                   {"int64", "-9223372036854775808 9223372036854775807 "},
                   {"uint64", "18446744073709551615 "},
                   {"float32", "0.1 -inf nan "},
                   {"enumeration", "1 "}}) {
            const auto dataset = m_file.dataset(QString::fromLatin1(name), &m_error);
            QVERIFY2(dataset, qPrintable(m_error));
            QCOMPARE(dataset->read({{0}, {dataset->dimensions().first().extent}}, &m_read),
                     QString());
            QString readTexts;
            for (int i = 0; i < m_read.count(); ++i)
                readTexts += m_read.text(i) + QLatin1Char(' ');
            QCOMPARE(readTexts, QString::fromLatin1(texts));
        }
    }

    void blocksComeInTheOrderOfTheFileOrAreRefused()
    {
        const auto plain = m_file.dataset("/plain"_s, &m_error);
        QCOMPARE(plain->read({{1, 2}, {2, 3}}, &m_read), QString());
        QCOMPARE(m_read.count(), 6);
        QCOMPARE(m_read.text(1), "8"_s);
        QCOMPARE(m_read.text(3), "12"_s);
        for (const ArrayBox &block : {ArrayBox{{0}, {1}}, ArrayBox{{0, -1}, {1, 1}},
                                      ArrayBox{{3, 0}, {2, 1}}, ArrayBox{{0, 0}, {0, 1}},
                                      ArrayBox{{1, 1}, {most, most}}, ArrayBox{{most, 1}, {1, 1}}})
            QVERIFY(!plain->read(block, &m_read).isEmpty());

        const auto none = m_file.dataset("none"_s, &m_error);
        QVERIFY(!none->read({{0, 0}, {1, 1}}, &m_read).isEmpty());
        const auto large = m_file.dataset("large"_s, &m_error);
        QVERIFY2(large, qPrintable(m_error));
        QCOMPARE(large->read({{most - 1, most - 2}, {1, 2}}, &m_read), QString());
        QVERIFY(!large->read({{0, 0}, {most, most}}, &m_read).isEmpty());
    }

    void labelsNameTheDimensions()
    {
        const QByteArray longest = QByteArray(40, 'x') + ",dim 1";
        for (const auto &[name, labels] : Cases{{"plain", "dim 0,dim 1"},
                                                {"texts", longest.constData()},
                                                {"padded", "lat,lon"},
                                                {"few", "dim 0,dim 1"},
                                                {"integers", "dim 0,dim 1"}}) {
            const auto dimensions
                = m_file.dataset(QString::fromLatin1(name), &m_error)->dimensions();
            QCOMPARE(dimensions.at(0).name + QLatin1Char(',') + dimensions.at(1).name,
                     QString::fromLatin1(labels));
        }
    }

    void whatIsNoArrayOfNumbersIsRefused()
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
        const ArrayDatasetInfo last = m_file.datasets().constLast();
        QCOMPARE(last.path + last.shape, "/uint641, uint64"_s);
        QVERIFY(last.isShowable && !m_file.datasets().at(7).isShowable);
    }

    void whatIsNoReadableFileIsRefusedAndTheOpenOneStays()
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

    void fileThatGoesOrIsCutShortWhileOpenIsNoticed()
    {
        ArrayFile file;
        makeLong("cut.h5");
        QCOMPARE(file.open(path("cut.h5")), QString());
        const auto cut = file.dataset("set"_s, &m_error);
        QVERIFY(QFile::resize(path("cut.h5"), 3000));
        // Without a look at its length it would read as zeros.
        QVERIFY(cut->read({{400'000}, {10}}, &m_read).contains("cut short"_s));
        // The HDF5 library hands out its open file again, and with it the length of yesterday.
        QVERIFY(!ArrayFile().open(path("cut.h5")).isEmpty());

        makeLong("gone.h5");
        QCOMPARE(file.open(path("gone.h5")), QString());
        const auto gone = file.dataset("set"_s, &m_error);
        QVERIFY(QFile::remove(path("gone.h5")));
        QVERIFY(gone->read({{0}, {10}}, &m_read).contains("disappeared"_s));
        QVERIFY(!file.dataset("other"_s, &m_error));
        QVERIFY2(m_error.contains("disappeared"_s), qPrintable(m_error));
    }

private:
    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    void makeLong(const char *name) const
    {
        NewH5File(path(name))
            .add("set", H5T_STD_I8LE, {500'000}, QByteArray(500'000, 1).constData(),
                 H5T_NATIVE_INT8);
    }

    const QTemporaryDir m_folder;
    ArrayFile m_file;
    QString m_error;
    ArrayNumbers m_read;
};

QTEST_APPLESS_MAIN(TestArrayFile)
#include "tst_arrayfile.moc"
