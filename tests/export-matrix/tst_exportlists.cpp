// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "ffmpeg/exporthints.h"
#include "ffmpeg/ffmpeghandler.h"
#include "testkit/faketools/faketools.h"
#include "testkit/fixtures/toolrun.h"
#include "tests/export-matrix/argumentlists.h"
#include "tests/export-matrix/exportcase.h"
#include "tests/export-matrix/sourcelist.h"
#include "tooladapter/rules/source.h"

#include <QDir>
#include <QMap>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <list>
#include <utility>

using namespace exportmatrix;

/// What the application passes to the tool, for every source and every choice of the export dialog.
class TestExportLists : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void theToolGetsTheWantedList_data();
    void theToolGetsTheWantedList();
    void theToolIsToldWhatAProbeFinds_data();
    void theToolIsToldWhatAProbeFinds();

private:
    void addSources();
    MadeFile sourceOf(int index);

    QTemporaryDir folder;
    QMap<int, MadeFile> sources; ///< made so far, by their place in the list
};

void TestExportLists::initTestCase()
{
    registerRecordTypes();
}

void TestExportLists::addSources()
{
    QTest::addColumn<int>("index");
    const QVector<SourceFile> all = allSources();
    for (int i = 0; i < all.size(); ++i)
        QTest::newRow(qPrintable(all.at(i).name)) << i;
}

MadeFile TestExportLists::sourceOf(int index)
{
    if (!sources.contains(index))
        sources[index] = makeSource(allSources().at(index), folder.path());
    return sources[index];
}

void TestExportLists::theToolGetsTheWantedList_data()
{
    addSources();
}

void TestExportLists::theToolGetsTheWantedList()
{
    QFETCH(int, index);
    constexpr int longWait = 240'000; // [ms] all tools at once, on a busy machine
    const MadeFile made = sourceOf(index);
    QVector<ExportOptions> all = optionsFor(made.source, false);
    QObject owner;
    std::list<QSignalSpy> results;
    for (int i = 0; i < all.size(); ++i) {
        all[i].exportDir = folder.filePath(QString("out %1 %2").arg(index).arg(i));
        QVERIFY(QDir().mkpath(all.at(i).exportDir));
        auto *const handler = new FFMpegHandler(&owner);
        results.emplace_back(handler, &FFMpegHandler::ffmpegExportResult);
        handler->buildExportArguments(made.record, all.at(i));
    }
    for (const QSignalSpy &result : results)
        QTRY_COMPARE_WITH_TIMEOUT(result.count(), 1, longWait);

    QMap<QString, QStringList> lists; // by the folder to be written to
    const auto calls = faketools::calls(made.record.absoluteFilePath);
    QCOMPARE(calls.size(), all.size());
    for (const faketools::Call &call : calls) {
        QCOMPARE(call.tool, QString("ffmpeg.exe"));
        lists[QFileInfo(call.arguments.last()).path()] = call.arguments;
    }
    QMap<QString, QString> lines;
    for (const ExportOptions &options : std::as_const(all)) {
        lines[argumentlists::choiceOf(options)] =
            argumentlists::lineOf(lists.value(options.exportDir), made.record, options.exportDir);
    }
    const QMap<QString, QString> wanted = argumentlists::wantedLines(made.source.name);
    for (auto line = lines.cbegin(); line != lines.cend(); ++line)
        QCOMPARE(line.key() + ": " + line.value(), line.key() + ": " + wanted.value(line.key()));
}

void TestExportLists::theToolIsToldWhatAProbeFinds_data()
{
    addSources();
}

void TestExportLists::theToolIsToldWhatAProbeFinds()
{
    QFETCH(int, index);
    const MadeFile made = sourceOf(index);
    if (!made.source.isRead) {
        QVERIFY(exporthints::sourceDescription(made.record).isEmpty());
        return;
    }
    QStringList arguments;
    for (const std::string &argument :
         tooladapter::probeArguments(made.record.absoluteFilePath.toStdString()))
        arguments += QString::fromStdString(argument);
    const ToolRun probe = runTool("ffprobe", arguments);
    const QString described = exporthints::sourceDescription(made.record);
    QVERIFY(!described.isEmpty());
    tooladapter::Source probed = tooladapter::parseProbe(probe.output.toStdString());
    for (auto &[name, text] : probed.notes) {
        if (name != "timecode" && name != "creation_time") // of the others, only the names are passed on
            text = tooladapter::omittedNote;
    }
    QVERIFY2(tooladapter::parseProbe(described.toStdString()) == probed,
             qPrintable(described + "\ninstead of\n" + probe.output));
}

QTEST_GUILESS_MAIN(TestExportLists)
#include "tst_exportlists.moc"
