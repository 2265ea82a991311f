#include <tul-util-gui/widgets/stringlisteditdialog.h>

#include <tul-util-gui/widgets/stringlistview_p.h>

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPushButton>
#include <QStringListModel>
#include <QVBoxLayout>

/// The form. Its names are part of the interface: slots are connected and hosts find the buttons by
/// them.
class Ui::StringListEditDialog
{
public:
    explicit StringListEditDialog(QDialog *dialog);

    StringListView *const listView;
    QPushButton *const addPushButton;
    QPushButton *const removePushButton;
    QPushButton *const clearPushButton;
    QDialogButtonBox *const buttonBox;
};

Ui::StringListEditDialog::StringListEditDialog(QDialog *dialog)
    : listView(new StringListView(dialog))
    , addPushButton(new QPushButton(::StringListEditDialog::tr("&Add..."), dialog))
    , removePushButton(new QPushButton(::StringListEditDialog::tr("&Remove"), dialog))
    , clearPushButton(new QPushButton(::StringListEditDialog::tr("&Clear"), dialog))
    , buttonBox(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, dialog))
{
    dialog->setObjectName(QStringLiteral("StringListEditDialog"));
    dialog->setWindowTitle(::StringListEditDialog::tr("Dialog"));
    dialog->resize(400, 300);
    listView->setObjectName(QStringLiteral("listView"));
    addPushButton->setObjectName(QStringLiteral("addPushButton"));
    removePushButton->setObjectName(QStringLiteral("removePushButton"));
    clearPushButton->setObjectName(QStringLiteral("clearPushButton"));
    buttonBox->setObjectName(QStringLiteral("buttonBox"));
    buttonBox->setOrientation(Qt::Horizontal);

    auto *const outer = new QVBoxLayout(dialog);
    outer->setObjectName(QStringLiteral("verticalLayout_2"));
    auto *const row = new QHBoxLayout;
    row->setObjectName(QStringLiteral("horizontalLayout"));
    auto *const column = new QVBoxLayout;
    column->setObjectName(QStringLiteral("verticalLayout"));
    for (QPushButton *const button : {addPushButton, removePushButton, clearPushButton})
        column->addWidget(button);
    column->addSpacerItem(new QSpacerItem(20, 40, QSizePolicy::Minimum, QSizePolicy::Expanding));
    row->addWidget(listView);
    row->addLayout(column);
    outer->addLayout(row);
    outer->addWidget(buttonBox);

    QObject::connect(buttonBox, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttonBox, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    QMetaObject::connectSlotsByName(dialog);
}

StringListEditDialog::StringListEditDialog(const QStringList &list, QWidget *parent)
    : QDialog(parent)
    , m_model(new QStringListModel(this))
    , m_ui(std::make_unique<Ui::StringListEditDialog>(this))
{
    m_ui->listView->setModel(m_model);
    m_ui->listView->installEventFilter(this);
    connect(m_ui->listView->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &StringListEditDialog::selectionChanged);
    connect(m_model, &QStringListModel::rowsRemoved, this,
            &StringListEditDialog::rowsInsertedOrRemoved);
    connect(m_model, &QStringListModel::rowsInserted, this,
            &StringListEditDialog::rowsInsertedOrRemoved);
    connect(m_model, &QStringListModel::modelReset, this,
            &StringListEditDialog::rowsInsertedOrRemoved);
    // A reset clears the selection without telling.
    connect(m_model, &QStringListModel::modelReset, this, &StringListEditDialog::selectionChanged);
    m_ui->clearPushButton->setEnabled(false);
    m_ui->removePushButton->setEnabled(false);
    setStringList(list);
}

StringListEditDialog::~StringListEditDialog()
{
    // A dialog that is on the screen is hidden after this, which ends the editing: the slots would
    // hear of that when the form is gone.
    m_model->disconnect(this);
    m_ui->listView->selectionModel()->disconnect(this);
}

QStringList StringListEditDialog::stringList() const
{
    return m_model->stringList();
}

void StringListEditDialog::setStringList(const QStringList &list)
{
    m_model->setStringList(list);
}

bool StringListEditDialog::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_ui->listView || event->type() != QEvent::KeyPress
        || static_cast<QKeyEvent *>(event)->key() != Qt::Key_Delete)
        return false;
    on_removePushButton_clicked();
    return true;
}

void StringListEditDialog::on_addPushButton_clicked()
{
    const int count = m_model->rowCount();
    if (count > 0 && m_model->index(count - 1).data().toString().isEmpty())
        return;
    m_model->insertRow(count);
    m_ui->listView->editNew(m_model->index(count));
}

void StringListEditDialog::on_removePushButton_clicked()
{
    const QModelIndexList rows = m_ui->listView->selectionModel()->selectedRows();
    if (!rows.isEmpty())
        m_model->removeRow(rows.first().row());
}

void StringListEditDialog::on_clearPushButton_clicked()
{
    m_model->setStringList({});
}

void StringListEditDialog::selectionChanged()
{
    m_ui->removePushButton->setEnabled(m_ui->listView->selectionModel()->hasSelection());
}

void StringListEditDialog::rowsInsertedOrRemoved()
{
    m_ui->clearPushButton->setEnabled(m_model->rowCount() > 0);
}
