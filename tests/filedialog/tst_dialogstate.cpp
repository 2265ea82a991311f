#include <tul-util-gui/filedialog/dialogstate_p.h>

#include <support/testcase.h>

#include <QDataStream>
#include <QRandomGenerator>
#include <QtTest>

namespace
{

DialogState someState()
{
    return {QByteArray("splitter"),
            {QUrl(QStringLiteral("file:")), QUrl::fromLocalFile(QStringLiteral("remote:/a"))},
            {QStringLiteral("/a"), QString(), QStringLiteral("remote:/b c")},
            QStringLiteral("/home"),
            QByteArray("header"),
            QFileDialog::Detail};
}

/// The bytes of some state with one of its numbers replaced, which begins at `position`.
QByteArray patched(int position, quint32 number)
{
    QByteArray bytes = someState().toBytes();
    QDataStream stream(&bytes, QIODevice::ReadWrite);
    stream.device()->seek(position);
    stream << number;
    return bytes;
}

} // namespace

class TestDialogState : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void hasItsFieldsInTheAgreedOrder();
    void refusesWhatIsNoState();
    void survivesAnyBytes();
};

void TestDialogState::hasItsFieldsInTheAgreedOrder()
{
    QDataStream stream(someState().toBytes());
    qint32 magic = 0;
    qint32 version = 0;
    qint32 viewMode = -1;
    DialogState read;
    stream >> magic >> version >> read.splitter >> read.sidebarUrls >> read.history
        >> read.directory >> read.header >> viewMode;
    QVERIFY(stream.atEnd() && stream.status() == QDataStream::Ok);
    QCOMPARE(magic, 190);
    QCOMPARE(version, 3);
    QCOMPARE(viewMode, 0);
    read.viewMode = QFileDialog::Detail;
    QCOMPARE(read.toBytes(), someState().toBytes());
    QCOMPARE(DialogState::fromBytes(read.toBytes())->toBytes(), read.toBytes());
}

void TestDialogState::refusesWhatIsNoState()
{
    const QByteArray bytes = someState().toBytes();
    for (int size = 0; size < bytes.size(); ++size)
        QVERIFY2(!DialogState::fromBytes(bytes.left(size)), qPrintable(QString::number(size)));
    const int places = 8 + 4 + someState().splitter.size();
    const QVector<QPair<int, quint32>> numbers{
        {0, 191}, {4, 4}, {places, 0x3fffffff}, {places, 0xffffffff}, {places, 9}};
    for (const auto &[position, number] : numbers)
        QVERIFY2(!DialogState::fromBytes(patched(position, number)),
                 qPrintable(QString::number(number)));
    // The view mode alone may be any.
    QCOMPARE(DialogState::fromBytes(patched(bytes.size() - 4, 77))->viewMode, QFileDialog::List);
}

void TestDialogState::survivesAnyBytes()
{
    QRandomGenerator random(20);
    for (int round = 0; round < 20000; ++round) {
        QByteArray bytes = someState().toBytes();
        for (quint32 changes = 1 + random.bounded(4U); changes > 0; --changes)
            bytes[random.bounded(bytes.size())] = static_cast<char>(random.generate());
        bytes.truncate(bytes.size() - (random.bounded(4) == 0 ? random.bounded(bytes.size()) : 0));
        if (const auto state = DialogState::fromBytes(bytes))
            QVERIFY(state->toBytes().size() < 2 * bytes.size() + 100);
    }
}

QTEST_MAIN(TestDialogState)
#include "tst_dialogstate.moc"
