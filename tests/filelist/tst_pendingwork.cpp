// SPDX-License-Identifier: MIT
#include "filelist/pendingwork.h"

#include <QTest>

namespace
{

void apply(PendingWork &work, const QString &event)
{
    if (event == "drop")
        work.drop();
    else if (event == "taken")
        work.takeDrop();
    else if (event == "read")
        work.askReading();
    else if (event == "reading ends")
        work.endReading();
    else if (event == "import ends")
        work.endImport();
    else
        QFAIL(qPrintable(event + ": no such event"));
}

QString stateOf(const PendingWork &work)
{
    QStringList state;
    if (work.isBusy())
        state += "busy";
    if (work.isImporting())
        state += "importing";
    if (work.isReading())
        state += "reading";
    if (work.mustKeepRows())
        state += "keeps rows";
    return state.join(", ");
}

} // namespace

class TestPendingWork : public QObject
{
    Q_OBJECT

private slots:
    void workIsPendingUntilItsEnd_data();
    void workIsPendingUntilItsEnd();
};

void TestPendingWork::workIsPendingUntilItsEnd_data()
{
    QTest::addColumn<QStringList>("events");
    QTest::addColumn<QString>("state");
    const QString idle;
    const QString importing("busy, importing");
    const QString reading("busy, reading, keeps rows");
    QTest::newRow("nothing") << QStringList{} << idle;
    QTest::newRow("a drop") << QStringList{"drop"} << importing;
    QTest::newRow("a drop that was taken") << QStringList{"drop", "taken"} << importing;
    QTest::newRow("an import") << QStringList{"drop", "taken", "import ends"} << idle;
    QTest::newRow("two drops of one import")
        << QStringList{"drop", "drop", "taken", "taken", "import ends"} << idle;
    QTest::newRow("a drop that crosses the end of an import")
        << QStringList{"drop", "taken", "drop", "import ends"} << "busy, keeps rows";
    QTest::newRow("the import of the drop that crossed")
        << QStringList{"drop", "taken", "drop", "import ends", "taken", "import ends"} << idle;
    QTest::newRow("a drop after one that crossed")
        << QStringList{"drop", "taken", "drop", "import ends", "drop"} << importing;
    QTest::newRow("a reading") << QStringList{"read"} << reading;
    QTest::newRow("a reading that ends") << QStringList{"read", "reading ends"} << idle;
    QTest::newRow("a reading whose last file failed") << QStringList{"read", "import ends"} << idle;
    QTest::newRow("two readings, one ended") << QStringList{"read", "read", "reading ends"} << reading;
    QTest::newRow("a reading that waits for an import")
        << QStringList{"drop", "taken", "read", "import ends"} << reading;
    QTest::newRow("its end") << QStringList{"drop", "taken", "read", "import ends", "reading ends"} << idle;
    QTest::newRow("its end with a failed file")
        << QStringList{"drop", "taken", "read", "import ends", "import ends"} << idle;
    QTest::newRow("a drop during a reading")
        << QStringList{"read", "drop"} << "busy, importing, reading, keeps rows";
    QTest::newRow("a drop that waits for a reading")
        << QStringList{"read", "drop", "taken", "reading ends"} << importing;
    QTest::newRow("a drop that waits for a reading whose last file failed")
        << QStringList{"read", "drop", "taken", "import ends"} << "busy, keeps rows";
    QTest::newRow("ends of nothing") << QStringList{"taken", "reading ends", "import ends", "drop", "read"}
                                     << "busy, importing, reading, keeps rows";
}

void TestPendingWork::workIsPendingUntilItsEnd()
{
    QFETCH(QStringList, events);
    PendingWork work;
    for (const QString &event : events)
        apply(work, event);
    QTEST(stateOf(work), "state");
}

QTEST_APPLESS_MAIN(TestPendingWork)
#include "tst_pendingwork.moc"
