#pragma once

#include <QGroupBox>
#include <QStringList>

#include <functional>

class QGridLayout;
class QLabel;

/// A button for each request that a tool makes to its user for a file, and what came back.
class FileRequests : public QGroupBox
{
    Q_OBJECT

public:
    explicit FileRequests(QWidget *parent = nullptr);

private:
    /// Shows a dialog over the given window and returns what the user has chosen.
    using Request = std::function<QStringList(QWidget *window)>;

    void addRow(QGridLayout *grid, const QString &side, const QVector<Request> &requests);
    void ask(const QString &what, const Request &request);

    QLabel *m_answer;
};
