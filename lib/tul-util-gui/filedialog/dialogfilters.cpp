#include <tul-util-gui/filedialog/dialogcontext_p.h>
#include <tul-util-gui/filedialog/dialogfilters_p.h>
#include <tul-util-gui/filedialog/dialogviews_p.h>
#include <tul-util-gui/filedialog/namefilters_p.h>
#include <tul-util-gui/filedialog/remotefiledialogbase.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include <QAction>
#include <QFileInfo>

void DialogFilters::setNameFilters(const QStringList &filters)
{
    m_isDefault = filters.isEmpty();
    m_nameFilters.clear();
    for (const QString &filter : filters)
        m_nameFilters.append(filter.simplified());
    if (m_nameFilters.isEmpty())
        m_nameFilters.append(RemoteFileDialogBase::tr("All Files (*)"));
    m_used = 0;
    updateBox();
    useNameFilter(0);
}

void DialogFilters::retranslate()
{
    if (m_isDefault)
        setNameFilters({});
    else
        updateBox();
}

void DialogFilters::selectNameFilter(const QString &filter)
{
    int index = m_nameFilters.indexOf(filter);
    if (index < 0 && m_context->options.testFlag(QFileDialog::HideNameFilterDetails)) {
        for (int i = m_nameFilters.size() - 1; i >= 0; --i) {
            if (tul::filterWithoutDetails(m_nameFilters.at(i)) == filter)
                index = i;
        }
    }
    if (index < 0)
        return;
    if (!tul::choosesDirectories(m_context->fileMode))
        m_context->ui.fileTypeCombo->setCurrentIndex(index);
    useNameFilter(index);
}

QString DialogFilters::selectedNameFilter() const
{
    return m_context->ui.fileTypeCombo->currentText();
}

void DialogFilters::useNameFilter(int index)
{
    if (index < 0 || index >= m_nameFilters.size())
        return;
    m_used = index;
    const QStringList patterns = tul::patternsOfFilter(m_nameFilters.at(index));
    if (m_context->acceptMode == QFileDialog::AcceptSave)
        replaceTypedSuffix(patterns);
    m_context->model->setNameFilters(patterns);
}

void DialogFilters::replaceTypedSuffix(const QStringList &patterns) const
{
    const QString text = m_context->ui.fileNameEdit->text();
    const QString suffix = QFileInfo(text).suffix();
    const QString replacement
        = patterns.isEmpty() ? QString() : QFileInfo(patterns.constFirst()).suffix();
    const bool isPattern = replacement.contains(QLatin1Char('*'))
        || replacement.contains(QLatin1Char('?')) || replacement.contains(QLatin1Char('['));
    if (suffix.isEmpty() || replacement.isEmpty() || isPattern)
        return;
    m_context->ui.fileNameEdit->setText(text.chopped(suffix.size()) + replacement);
}

QString DialogFilters::boxText(const QString &filter) const
{
    return m_context->options.testFlag(QFileDialog::HideNameFilterDetails)
        ? tul::filterWithoutDetails(filter)
        : filter;
}

void DialogFilters::updateBox()
{
    QComboBox *const box = m_context->ui.fileTypeCombo;
    box->clear();
    if (tul::choosesDirectories(m_context->fileMode)) {
        box->addItem(RemoteFileDialogBase::tr("Directories"));
    } else {
        for (const QString &filter : qAsConst(m_nameFilters))
            box->addItem(boxText(filter));
        box->setCurrentIndex(m_used);
    }
    box->setEnabled(m_context->fileMode != tul::directoryOnly);
}

void DialogFilters::setEntryFilter(QDir::Filters filters)
{
    m_context->model->setFilter(filters);
    m_context->ui.showHiddenAction->setChecked(filters.testFlag(QDir::Hidden));
}

void DialogFilters::updateEntryFilter()
{
    const bool withFiles = m_context->fileMode != tul::directoryOnly
        && !m_context->options.testFlag(QFileDialog::ShowDirsOnly);
    QDir::Filters filters = m_context->model->filter() | QDir::AllDirs | QDir::Dirs | QDir::Drives;
    filters.setFlag(QDir::Files, withFiles);
    setEntryFilter(filters);
}

void DialogFilters::toggleHidden()
{
    setEntryFilter(m_context->model->filter() ^ QDir::Hidden);
}
