// SPDX-License-Identifier: MIT
#include "control/exportbatch.h"
#include "testkit/fixtures/row.h"

#include <QTest>

#include <utility>

namespace
{

QString textOf(const ExportBatch::Progress &progress)
{
    return QString("%1/%2 %3").arg(progress.current).arg(progress.total).arg(progress.statusMsg);
}

QString textOf(const ExportBatch::Started &)
{
    return "started";
}

QString textOf(const ExportBatch::Ready &ready)
{
    return QString("ready %1 [%2]").arg(ready.result).arg(ready.failedFiles.join(' '));
}

QStringList textsOf(const ExportBatch::Signals &news)
{
    QStringList texts;
    for (const auto &signal : news)
        texts += std::visit([](const auto &content) { return textOf(content); }, signal);
    return texts;
}

/// What \a batch says about \a event: "start <files>", "units <count>", "cancel", "drop", "drop queued",
/// "done <file>" or "fail <file>".
QStringList apply(ExportBatch &batch, const QString &event)
{
    const QString first = event.section(' ', 0, 0);
    const QString second = event.section(' ', 1, 1);
    if (first == "start")
        return textsOf(batch.start(second.toInt(), {}));
    if (first == "units")
        return textsOf(batch.addProgress(second.toUInt()));
    if (first == "cancel")
        return textsOf(batch.cancel());
    if (first == "drop")
        return textsOf(second.isEmpty() ? batch.drop() : batch.dropQueued());
    return textsOf(batch.finish(second, first == "fail" ? 1 : 0));
}

/// All ways in which \a files may end one after the other: exported, failed or, once cancelled, dropped. The
/// user cancels at any time, or never.
QVector<QStringList> allOrders(int files, bool cancelled = false)
{
    if (files == 0)
        return {{}};
    QVector<QStringList> orders;
    QStringList events{"done x", "fail x"};
    if (cancelled)
        events += "drop queued";
    const QVector<QStringList> ordersOfOthers = allOrders(files - 1, cancelled);
    for (const QString &event : std::as_const(events)) {
        for (const QStringList &rest : ordersOfOthers)
            orders += QStringList{event} + rest;
    }
    if (!cancelled) {
        const QVector<QStringList> ordersOnceCancelled = allOrders(files, true);
        for (const QStringList &rest : ordersOnceCancelled)
            orders += QStringList{"cancel"} + rest;
    }
    return orders;
}

} // namespace

class TestExportBatch : public QObject
{
    Q_OBJECT

private slots:
    void everyEventIsAnswered_data();
    void everyEventIsAnswered();
    void everyOrderEndsOnce();
    void aFileIsWorthFifteenUnits();
};

void TestExportBatch::everyEventIsAnswered_data()
{
    QTest::addColumn<QStringList>("events");
    QTest::addColumn<QStringList>("answers"); // to the last event
    row("nothing to export", QStringList{"start 0"}, QStringList{});
    row("start", QStringList{"start 2"}, QStringList{"0/1 exporting files...", "started"});
    row("progress", QStringList{"start 2", "units 4", "units 3"}, QStringList{"7/30 exporting files..."});
    row("the first file", QStringList{"start 2", "units 15", "done a"},
        QStringList{"15/30 exporting files..."});
    row("the last file", QStringList{"start 2", "units 15", "done a", "units 15", "done b"},
        QStringList{"30/30 exporting files...", "2/2 ready", "ready 0 []"});
    row("the last after a failure", QStringList{"start 2", "fail a", "units 15", "done b"},
        QStringList{"15/30 exporting files...", "2/2 ready", "ready 2 [a]"});
    row("the last fails", QStringList{"start 2", "done a", "fail b"},
        QStringList{"0/30 exporting files...", "2/2 ready", "ready 2 [b]"});
    row("all fail", QStringList{"start 2", "fail a", "fail b"},
        QStringList{"0/30 exporting files...", "2/2 ready", "ready 2 [a b]"});
    row("cancel", QStringList{"start 2", "units 4", "cancel"}, QStringList{"4/30 cancelling export..."});
    row("a running one ends after a cancel", QStringList{"start 2", "cancel", "fail a"},
        QStringList{"0/30 cancelling export..."});
    row("the last running one ends after a cancel", QStringList{"start 2", "cancel", "fail a", "done b"},
        QStringList{"0/30 cancelling export...", "2/2 cancelling export...", "0/1 export cancelled",
                    "ready 1 [a]"});
    row("a failure before the cancel is named", QStringList{"start 2", "fail a", "cancel", "done b"},
        QStringList{"0/30 cancelling export...", "2/2 cancelling export...", "0/1 export cancelled",
                    "ready 1 [a]"});
    row("dropped while it is handed out", QStringList{"start 2", "cancel", "drop"},
        QStringList{"0/30 cancelling export..."});
    row("the last dropped while it is handed out", QStringList{"start 2", "cancel", "drop", "drop"},
        QStringList{"0/30 cancelling export...", "2/2 cancelling export...", "ready 1 []",
                    "0/1 export cancelled"});
    row("dropped out of the queue", QStringList{"start 2", "cancel", "drop queued"},
        QStringList{"0/30 cancelling export..."});
    row("the last dropped out of the queue", QStringList{"start 2", "cancel", "done a", "drop queued"},
        QStringList{"0/30 cancelling export...", "ready 1 []", "0/1 export cancelled"});
    row("the next batch is not cancelled and has no failures",
        QStringList{"start 1", "cancel", "fail a", "start 1", "done b"},
        QStringList{"0/15 exporting files...", "1/1 ready", "ready 0 []"});
    row("a second batch takes over the counters",
        QStringList{"start 3", "fail a", "units 9", "start 1", "done b"},
        QStringList{"0/15 exporting files...", "1/1 ready", "ready 0 []"});
}

void TestExportBatch::everyEventIsAnswered()
{
    QFETCH(QStringList, events);
    ExportBatch batch;
    QStringList last;
    for (const QString &event : events)
        last = apply(batch, event);
    QTEST(last, "answers");
}

void TestExportBatch::everyOrderEndsOnce()
{
    constexpr int files = 4;
    const QVector<QStringList> orders = allOrders(files);
    QCOMPARE(orders.size(), 16 + 81 + 2 * 27 + 4 * 9 + 8 * 3); // never, before the first, ... the last file
    for (const QStringList &events : orders) {
        ExportBatch batch;
        apply(batch, QString("start %1").arg(files));
        QStringList texts;
        for (const QString &event : events)
            texts += apply(batch, event);
        const int result = events.contains("cancel") ? 1 : events.contains("fail x") ? 2 : 0;
        const QStringList ends = texts.filter("ready ");
        QStringList failed = events.filter("fail x");
        failed.replaceInStrings("fail ", "");
        QCOMPARE(ends, QStringList{QString("ready %1 [%2]").arg(result).arg(failed.join(' '))});
        const bool lastIsDropped = events.last() == "drop queued";
        QCOMPARE(texts.indexOf(ends.first()), texts.size() - (lastIsDropped ? 2 : 1));
    }
}

void TestExportBatch::aFileIsWorthFifteenUnits()
{
    ExportBatch batch;
    ExportOptions options;
    options.exportDir = "/target";
    options.progressSteps = 3;
    batch.start(2, options);
    QCOMPARE(batch.options().exportDir, QString("/target"));
    QCOMPARE(batch.options().progressSteps, 15U);
    QCOMPARE(batch.fileCount(), 2);
    QVERIFY(!batch.isCancelled());
    batch.cancel();
    QVERIFY(batch.isCancelled());
}

QTEST_APPLESS_MAIN(TestExportBatch)
#include "tst_exportbatch.moc"
