#pragma once

#include <workbench/arrayfile.h>
#include <workbench/arrayslice.h>
#include <workbench/page.h>

#include <QTimer>

#include <memory>

class ArrayTable;
class DimensionList;
class QComboBox;
class QFormLayout;

/// Shows a slice of a dataset of an HDF5 file in a table, beside three lists between which its
/// dimensions are dragged: those along the rows, those along the columns, and those that are fixed
/// at an index, which is chosen below.
class ArrayPage : public WorkbenchPage
{
    Q_OBJECT

public:
    explicit ArrayPage(QWidget *parent = nullptr);
    ~ArrayPage() override;

    QString title() const override;
    QString openFilter() const override;

    /// Opens a file and, when named, a dataset of it; otherwise the first one that can be shown. A
    /// file without the dataset is opened, and another one can be chosen.
    void open(const QStringList &arguments) override;

    QString advice() const override;
    QWidget *createOptions() override;

    /// One picture for each of the first datasets that can be shown, or of the one that was asked
    /// for.
    QStringList shots() const override;
    void prepareShot(const QString &shot) override;

    /// Puts a dimension at the end of the list of an axis, as a drag would.
    void moveDimension(int dimension, ArraySlice::Axis axis);

private:
    struct Shot {
        QString name;
        QString dataset;
    };

    QWidget *createPanel();
    void addListActions(DimensionList *list);
    void openDataset(const QString &path);
    void showDataset(const std::shared_ptr<const ArrayDataset> &dataset);
    void selectInCombo();
    void applyLists();
    void fillLists();
    void fillChoosers();
    void updateStatus();
    QVector<Shot> namedShots() const;

    ArrayFile m_file;
    QVector<ArrayDatasetInfo> m_datasets;
    std::shared_ptr<const ArrayDataset> m_dataset; // the one that is shown, or null
    bool m_wasNamed = false; // by the arguments, and not chosen as the first one
    QComboBox *m_combo;
    ArrayTable *m_table;
    DimensionList *m_lists[ArraySlice::axisCount];
    QFormLayout *m_choosers;
    QTimer m_applyTimer;
};
