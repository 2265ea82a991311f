#include <tul-util-gui/filedialog/filedialog.h>
#include <workbench/filerequests.h>

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>

namespace
{

QString filters()
{
    return QStringLiteral("Data (*.dat);;Sources (*.cpp *.h);;All Files (*)");
}

QStringList listOf(const QString &answer)
{
    return answer.isEmpty() ? QStringList() : QStringList{answer};
}

QCheckBox *createSwitch(const QString &text, bool on, void (*set)(bool))
{
    auto *const box = new QCheckBox(text);
    box->setChecked(on);
    QObject::connect(box, &QCheckBox::toggled, box, set);
    return box;
}

} // namespace

FileRequests::FileRequests(QWidget *parent)
    : QGroupBox(tr("Ask for a file"), parent)
    , m_answer(new QLabel(tr("The answer comes here. Each purpose remembers its directory.")))
{
    // One purpose for files and one for directories: the captions say which.
    const QString open = tr("Open Data File");
    const QString save = tr("Save Data File");
    const QString choose = tr("Choose Data Directory");
    auto *const grid = new QGridLayout;
    addRow(
        grid, tr("Local"),
        {[=](auto *w) { return listOf(FileDialog::getLocalOpenFileName(w, open, {}, filters())); },
         [=](auto *w) { return FileDialog::getLocalOpenFileNames(w, open, {}, filters()); },
         [=](auto *w) { return listOf(FileDialog::getLocalSaveFileName(w, save, {}, filters())); },
         [=](auto *w) { return listOf(FileDialog::getLocalExistingDirectory(w, choose)); }});
    addRow(
        grid, tr("Remote"),
        {[=](auto *w) { return listOf(FileDialog::getRemoteOpenFileName(w, open, {}, filters())); },
         [=](auto *w) { return FileDialog::getRemoteOpenFileNames(w, open, {}, filters()); },
         [=](auto *w) { return listOf(FileDialog::getRemoteSaveFileName(w, save, {}, filters())); },
         [=](auto *w) { return listOf(FileDialog::getRemoteExistingDirectory(w, choose)); },
         [=](auto *w) { return listOf(FileDialog::getRemoteExecutableFileName(w)); }});
    addRow(
        grid, tr("Source code"),
        {[=](auto *w) { return listOf(FileDialog::getSourceCodeFileName(w, open, {}, filters())); },
         [=](auto *w) { return FileDialog::getSourceCodeFileNames(w, open, {}, filters()); },
         [=](auto *w) {
             return listOf(FileDialog::getSourceCodeSaveFileName(w, save, {}, filters()));
         },
         [=](auto *w) { return listOf(FileDialog::getSourceCodeExistingDirectory(w, choose)); }});

    auto *const switches = new QHBoxLayout;
    switches->addWidget(createSwitch(tr("&All files are local"), FileDialog::allFilesLocal(),
                                     FileDialog::setAllFilesLocal));
    switches->addWidget(createSwitch(tr("&Sources are local"), FileDialog::sourcesLocal(),
                                     FileDialog::setSourcesLocal));
    switches->addStretch();
    m_answer->setTextFormat(Qt::PlainText);
    m_answer->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_answer->setWordWrap(true);

    auto *const layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(switches);
    layout->addWidget(m_answer);
}

void FileRequests::addRow(QGridLayout *grid, const QString &side, const QVector<Request> &requests)
{
    const QStringList kinds{tr("Open..."), tr("Open Several..."), tr("Save..."), tr("Directory..."),
                            tr("Program...")};
    const int row = grid->rowCount();
    grid->addWidget(new QLabel(side), row, 0);
    for (int i = 0; i < requests.size(); ++i) {
        auto *const button = new QPushButton(kinds.at(i));
        const QString what = tr("%1, %2").arg(side, kinds.at(i));
        button->setAccessibleName(what);
        connect(button, &QPushButton::clicked, this,
                [this, what, request = requests.at(i)] { ask(what, request); });
        grid->addWidget(button, row, i + 1);
    }
}

void FileRequests::ask(const QString &what, const Request &request)
{
    const QPointer<FileRequests> self(this);
    const QStringList answer = request(window());
    if (!self)
        return;
    m_answer->setText(
        tr("%1 %2").arg(what, answer.isEmpty() ? tr("nothing") : answer.join(QLatin1Char('\n'))));
}
