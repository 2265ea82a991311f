#include <workbench/arraypage.h>
#include <workbench/arraytable.h>
#include <workbench/dimensionlist.h>
#include <workbench/indexchooser.h>

#include <tul-util-gui/mdatable/mdatableselection.h>

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QMetaEnum>
#include <QRegularExpression>
#include <QScrollArea>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>

namespace
{

constexpr int mostShots = 12;

constexpr int panelGap = 12; // pixels, between the table and the lists

/// How high a list of dimensions gets where there is room.
constexpr int mostLines = 6;

const ArraySlice::Axis axes[] = {ArraySlice::Rows, ArraySlice::Columns, ArraySlice::Fixed};

QStringList dimensionNames(const QVector<ArrayDimension> &dimensions)
{
    QStringList names;
    for (const ArrayDimension &dimension : dimensions)
        names.append(dimension.name);
    return names;
}

QVector<long long> dimensionExtents(const QVector<ArrayDimension> &dimensions)
{
    QVector<long long> extents;
    for (const ArrayDimension &dimension : dimensions)
        extents.append(dimension.extent);
    return extents;
}

/// "array-" and the path of the dataset, as far as it is fit for a file name.
QString shotName(const QString &path)
{
    static const QRegularExpression unfit(QStringLiteral("[^A-Za-z0-9_]+"));
    return QStringLiteral("array") + QString(path).replace(unfit, QStringLiteral("-"));
}

} // namespace

ArrayPage::ArrayPage(QWidget *parent)
    : WorkbenchPage(parent)
    , m_combo(new QComboBox)
    , m_table(new ArrayTable)
{
    m_combo->setAccessibleName(tr("Dataset"));
    m_combo->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_table->setAccessibleName(tr("Cells"));

    auto *const datasetLabel = new QLabel(tr("&Dataset:"));
    datasetLabel->setBuddy(m_combo);
    auto *const top = new QHBoxLayout;
    top->addWidget(datasetLabel);
    top->addWidget(m_combo, 1);
    top->addStretch(1);

    auto *const splitter = new QSplitter;
    splitter->addWidget(m_table);
    splitter->addWidget(createPanel());
    splitter->setStretchFactor(0, 1);
    splitter->setChildrenCollapsible(false);
    splitter->setHandleWidth(panelGap);

    auto *const layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(splitter, 1);

    m_applyTimer.setSingleShot(true);
    connect(&m_applyTimer, &QTimer::timeout, this, &ArrayPage::applyLists);
    connect(m_combo, QOverload<int>::of(&QComboBox::activated), this,
            [this](int index) { openDataset(m_combo->itemData(index).toString()); });
    connect(m_table, &ArrayTable::readFailed, this, &ArrayPage::failed);
    connect(m_table, &MDATable::currentChanged, this, &ArrayPage::updateStatus);
}

ArrayPage::~ArrayPage() = default;

QWidget *ArrayPage::createPanel()
{
    const QString titles[] = {tr("&Rows"), tr("&Columns"), tr("Fi&xed at an index")};
    auto *const panel = new QWidget;
    auto *const layout = new QVBoxLayout(panel);
    layout->setContentsMargins(0, 0, 0, 0);
    for (const ArraySlice::Axis axis : axes) {
        auto *const list = new DimensionList(panel);
        auto *const label = new QLabel(titles[axis]);
        label->setBuddy(list);
        list->setAccessibleName(QString(titles[axis]).remove(QLatin1Char('&')));
        list->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
        list->setMaximumHeight(mostLines * list->fontMetrics().lineSpacing());
        connect(list, &DimensionList::edited, &m_applyTimer, [this] { m_applyTimer.start(0); });
        layout->addWidget(label);
        layout->addWidget(list, 1);
        m_lists[axis] = list;
    }
    for (DimensionList *const list : m_lists)
        addListActions(list);

    m_choosers = new QFormLayout;
    layout->addLayout(m_choosers);
    layout->addStretch();

    auto *const area = new QScrollArea;
    area->setWidget(panel);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    return area;
}

/// What dragging does, for the keyboard.
void ArrayPage::addListActions(DimensionList *list)
{
    const auto add = [&](const QString &text, const QKeySequence &shortcut, auto &&move) {
        auto *const action = new QAction(text, list);
        action->setShortcut(shortcut);
        action->setShortcutContext(Qt::WidgetShortcut);
        action->setShortcutVisibleInContextMenu(true);
        connect(action, &QAction::triggered, this, [list, move] {
            const int row = list->currentRow();
            if (row >= 0)
                move(row);
        });
        list->addAction(action);
    };
    const QString texts[] = {tr("Move to &Rows"), tr("Move to &Columns"), tr("Move to Fi&xed")};
    for (const ArraySlice::Axis axis : axes) {
        if (m_lists[axis] == list)
            continue;
        add(texts[axis], QKeySequence(Qt::CTRL + Qt::Key_1 + axis),
            [=](int row) { moveDimension(list->dimensions().at(row), axis); });
    }
    const auto shift = [list](int row, int by) {
        if (row + by < 0 || row + by >= list->count())
            return;
        list->insertItem(row + by, list->takeItem(row));
        list->setCurrentRow(row + by);
    };
    add(tr("Move &Up"), QKeySequence(Qt::CTRL + Qt::Key_Up), [=](int row) { shift(row, -1); });
    add(tr("Move &Down"), QKeySequence(Qt::CTRL + Qt::Key_Down), [=](int row) { shift(row, 1); });
}

QString ArrayPage::title() const
{
    return tr("Array");
}

QString ArrayPage::openFilter() const
{
    return tr("HDF5 files (*.h5 *.hdf5 *.he5 *.nc);;All files (*)");
}

QString ArrayPage::advice() const
{
    return tr(
        "Drag dimensions from list to list, or use their context menu. The last one of a list "
        "changes fastest. Select a block with Shift or the mouse, and copy it with Ctrl+C.");
}

QWidget *ArrayPage::createOptions()
{
    auto *const options = new QWidget;
    auto *const layout = new QHBoxLayout(options);
    auto *const grid = new QCheckBox(tr("Show the &grid"));
    grid->setChecked(m_table->showGrid());
    connect(grid, &QCheckBox::toggled, m_table, &MDATable::setShowGrid);
    layout->addWidget(grid);

    auto *const style = new QComboBox;
    const QMetaEnum styles = QMetaEnum::fromType<MDATable::FocusStyle>();
    for (int i = 0; i < styles.keyCount(); ++i)
        style->addItem(QString::fromLatin1(styles.key(i)), styles.value(i));
    style->setCurrentIndex(style->findData(int(m_table->focusStyle())));
    connect(style, QOverload<int>::of(&QComboBox::currentIndexChanged), m_table, [this, style] {
        m_table->setFocusStyle(MDATable::FocusStyle(style->currentData().toInt()));
    });
    auto *const label = new QLabel(tr("&Focus style:"));
    label->setBuddy(style);
    layout->addWidget(label);
    layout->addWidget(style);
    layout->addStretch();
    return options;
}

void ArrayPage::open(const QStringList &arguments)
{
    const QString error = m_file.open(arguments.value(0));
    if (!error.isEmpty()) {
        Q_EMIT failed(error);
        return;
    }
    m_datasets = m_file.datasets();
    m_combo->clear();
    for (const ArrayDatasetInfo &info : qAsConst(m_datasets))
        m_combo->addItem(tr("%1 (%2)", "dataset (shape)").arg(info.path.mid(1), info.shape),
                         info.path);
    showDataset(nullptr);

    m_wasNamed = arguments.size() > 1;
    const auto first = std::find_if(m_datasets.cbegin(), m_datasets.cend(),
                                    [](const ArrayDatasetInfo &info) { return info.isShowable; });
    if (m_wasNamed)
        openDataset(arguments.at(1));
    else if (first != m_datasets.cend())
        openDataset(first->path);
    else
        Q_EMIT failed(tr("The file \"%1\" has no dataset that can be shown.").arg(arguments.at(0)));
}

void ArrayPage::openDataset(const QString &path)
{
    QString error;
    const std::shared_ptr<const ArrayDataset> dataset = m_file.dataset(path, &error);
    if (dataset) {
        showDataset(dataset);
        return;
    }
    selectInCombo();
    Q_EMIT failed(error);
}

/// Shows a dataset, or nothing at all.
void ArrayPage::showDataset(const std::shared_ptr<const ArrayDataset> &dataset)
{
    m_dataset = dataset;
    if (dataset) {
        m_table->setArray(
            dimensionNames(dataset->dimensions()),
            [dataset](const ArrayBox &box, ArrayNumbers *numbers) {
                return dataset->read(box, numbers);
            },
            ArraySlice(dimensionExtents(dataset->dimensions())));
    } else {
        m_table->setArray({}, {}, ArraySlice());
    }
    const QString file = QFileInfo(m_file.fileName()).fileName();
    setWindowTitle(dataset ? tr("%1 in %2", "dataset in file").arg(dataset->path(), file) : file);
    selectInCombo();
    fillLists();
    fillChoosers();
    updateStatus();
}

void ArrayPage::selectInCombo()
{
    m_combo->setCurrentIndex(m_dataset ? m_combo->findData(m_dataset->path()) : -1);
}

void ArrayPage::moveDimension(int dimension, ArraySlice::Axis axis)
{
    for (DimensionList *const list : m_lists) {
        const int row = list->dimensions().indexOf(dimension);
        if (row < 0)
            continue;
        QListWidgetItem *const entry = list->takeItem(row);
        m_lists[axis]->addItem(entry);
        m_lists[axis]->setCurrentItem(entry);
        return;
    }
}

/// Brings the table in line with the lists.
void ArrayPage::applyLists()
{
    for (const DimensionList *const list : m_lists) {
        if (list->isDragging())
            return; // the end of the drag leads here again
    }
    ArraySlice slice = m_table->slice();
    if (!slice.arrange(m_lists[ArraySlice::Rows]->dimensions(),
                       m_lists[ArraySlice::Columns]->dimensions(),
                       m_lists[ArraySlice::Fixed]->dimensions())) {
        fillLists();
        return;
    }
    m_table->setSlice(slice);
    fillChoosers();
    updateStatus();
}

void ArrayPage::fillLists()
{
    for (const ArraySlice::Axis axis : axes) {
        m_lists[axis]->clear();
        for (const int dimension : m_table->slice().dimensions(axis)) {
            const ArrayDimension &its = m_dataset->dimensions().at(dimension);
            m_lists[axis]->addDimension(
                dimension, tr("%1 (%2)", "dimension (extent)").arg(its.name).arg(its.extent),
                tr("Dimension %1 of the dataset").arg(dimension));
        }
    }
    m_applyTimer.stop(); // the table shows this already
}

void ArrayPage::fillChoosers()
{
    while (m_choosers->rowCount() > 0)
        m_choosers->removeRow(0);
    for (const int dimension : m_table->slice().dimensions(ArraySlice::Fixed)) {
        const ArrayDimension &its = m_dataset->dimensions().at(dimension);
        auto *const chooser = new IndexChooser(its.extent, its.name);
        chooser->setIndex(m_table->slice().index(dimension));
        connect(chooser, &IndexChooser::indexChanged, this, [this, dimension](long long index) {
            ArraySlice slice = m_table->slice();
            slice.setIndex(dimension, index);
            m_table->setSlice(slice);
            updateStatus();
        });
        auto *const label = new QLabel(its.name);
        label->setTextFormat(Qt::PlainText);
        m_choosers->addRow(label, chooser);
    }
}

/// Tells where in the array the current cell is, and what it holds.
void ArrayPage::updateStatus()
{
    const long long row = m_table->currentRow();
    const long long column = m_table->currentColumn();
    const ArraySlice &slice = m_table->slice();
    if (!m_dataset || row < 0 || row >= slice.numRows() || column < 0
        || column >= slice.numColumns()) {
        Q_EMIT statusChanged(QString());
        return;
    }
    const QVector<long long> coordinates = slice.coordinates(row, column);
    QStringList places;
    for (int i = 0; i < coordinates.size(); ++i)
        places.append(tr("%1 %2", "dimension index")
                          .arg(m_dataset->dimensions().at(i).name)
                          .arg(coordinates.at(i)));
    Q_EMIT statusChanged(tr("%1: %2", "coordinates: value")
                             .arg(places.join(QStringLiteral(", ")), m_table->text(row, column)));
}

QVector<ArrayPage::Shot> ArrayPage::namedShots() const
{
    QVector<Shot> result;
    QStringList names;
    for (const ArrayDatasetInfo &info : m_datasets) {
        if (!info.isShowable || result.size() == mostShots
            || (m_wasNamed && !(m_dataset && m_dataset->path() == info.path)))
            continue;
        QString name = shotName(info.path);
        if (names.contains(name))
            name += QStringLiteral("-%1").arg(result.size());
        names.append(name);
        result.append({name, info.path});
    }
    return result;
}

QStringList ArrayPage::shots() const
{
    QStringList result;
    const auto shots = namedShots();
    for (const Shot &shot : shots)
        result.append(shot.name);
    return result;
}

void ArrayPage::prepareShot(const QString &shot)
{
    const auto candidates = namedShots();
    for (const Shot &candidate : candidates) {
        if (candidate.name == shot)
            openDataset(candidate.dataset);
    }
    if (!m_dataset)
        return;
    // A header of two lines, where there are dimensions for it.
    const int rank = m_dataset->dimensions().size();
    if (rank > 3) {
        moveDimension(rank - 3, ArraySlice::Rows);
        moveDimension(rank - 2, ArraySlice::Rows);
        applyLists();
    }
    // Far down, where the sample has numbers, and with a block selected.
    constexpr long long farRow = 50'000'000;
    const long long row = m_table->numRows() > farRow + 8 ? farRow : 0;
    m_table->setCurrentCell(row + 12, 0); // with some rows below the block
    m_table->selectCells(row + 3, 1, row + 6, 3);
    m_table->setCurrentCell(row + 6, 3);
    m_table->setFocus();
}
