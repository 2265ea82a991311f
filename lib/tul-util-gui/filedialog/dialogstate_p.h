#pragma once

#include <QByteArray>
#include <QFileDialog>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <optional>

/// The layout of a file dialog as it is kept between runs.
///
/// The bytes come from a file that anybody may have written: counts are checked against what is
/// there before anything is allocated, and what is cut off or of another version is no state.
struct DialogState {
    QByteArray splitter;
    QList<QUrl> sidebarUrls;
    QStringList history;
    QString directory; ///< that was visited last
    QByteArray header; ///< of the detail view
    QFileDialog::ViewMode viewMode = QFileDialog::List;

    QByteArray toBytes() const;
    static std::optional<DialogState> fromBytes(const QByteArray &bytes);
};
