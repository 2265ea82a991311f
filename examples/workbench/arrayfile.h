#pragma once

#include <workbench/arraynumbers.h>

#include <QCoreApplication>
#include <QString>
#include <QVector>

#include <memory>

struct ArrayBox;

/// One dimension of a dataset: its label in the file, or "dim" and its number, and its extent.
struct ArrayDimension {
    QString name;
    long long extent;
};

/// A dataset of numbers in an HDF5 file, open for reading. It keeps the file open by itself.
///
/// *Threads*: GUI thread only, like everything here: the HDF5 library is not made for several.
class ArrayDataset
{
    Q_DECLARE_TR_FUNCTIONS(ArrayDataset)

public:
    ~ArrayDataset();

    /// The full path in the file, with a slash at the front.
    QString path() const;
    const QVector<ArrayDimension> &dimensions() const;

    /// Reads the numbers of a block that lies in the dataset, in the order of the file: the last
    /// coordinate changes fastest. Returns a sentence for the user when that fails, because the
    /// file is damaged or was removed or cut short in the meantime; empty when all went well.
    QString read(const ArrayBox &box, ArrayNumbers *numbers) const;

private:
    friend class ArrayFile;
    struct Private;

    explicit ArrayDataset(std::unique_ptr<Private> data);

    const std::unique_ptr<Private> d;
};

/// What a list of datasets says about one of them.
struct ArrayDatasetInfo {
    QString path;
    QString shape; ///< extents and type, for example "365 × 48, float32"
    bool isShowable; ///< whether ArrayFile::dataset() can open it
};

/// An HDF5 file, open for reading.
class ArrayFile
{
    Q_DECLARE_TR_FUNCTIONS(ArrayFile)

public:
    ArrayFile();
    ~ArrayFile();

    /// Opens a file in place of the present one. Returns a sentence for the user when that fails,
    /// and then has the present file still open; empty when all went well.
    QString open(const QString &fileName);

    QString fileName() const;

    /// All datasets, those in groups included: in the order of their creation where the file keeps
    /// it, by name otherwise.
    QVector<ArrayDatasetInfo> datasets() const;

    /// Opens a dataset; the slash at the front of its path may be left out. Null when that fails,
    /// with a sentence for the user in `error`: what is no numbers or has no dimensions is refused.
    std::shared_ptr<const ArrayDataset> dataset(const QString &path, QString *error) const;

private:
    friend class ArrayDataset;
    struct Private;

    std::shared_ptr<const Private> d; // shared with the datasets
};
