// SPDX-License-Identifier: MIT
#include "app/recordtypes.h"
#include "ffmpeg/ffmpeghandler.h"
#include "tests/export-matrix/exportcase.h"
#include "tests/export-matrix/sourcelist.h"
#include "tests/export-matrix/wantedlist.h"
#include "tests/fakes/faketools.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace exportmatrix;

/// What the application passes to the tool, for every source and every choice of the export dialog.
class TestExportLists : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void theToolGetsTheWantedList_data();
    void theToolGetsTheWantedList();
};

void TestExportLists::initTestCase()
{
    registerRecordTypes();
}

void TestExportLists::theToolGetsTheWantedList_data()
{
    QTest::addColumn<int>("index");
    const QVector<SourceFile> sources = allSources();
    for (int i = 0; i < sources.size(); ++i)
        QTest::newRow(qPrintable(sources.at(i).name)) << i;
}

void TestExportLists::theToolGetsTheWantedList()
{
    QFETCH(int, index);
    constexpr int longWait = 60'000; // [ms]
    const QTemporaryDir folder;
    const MadeFile made = makeSource(allSources().at(index), folder.path());
    const QVector<ExportOptions> all = optionsFor(made.source, false);
    for (int i = 0; i < all.size(); ++i) {
        ExportOptions options = all.at(i);
        options.exportDir = folder.filePath(QString("out %1").arg(i));
        QVERIFY(QDir().mkpath(options.exportDir));
        FFMpegHandler handler(nullptr);
        QSignalSpy result(&handler, &FFMpegHandler::ffmpegExportResult);
        handler.buildExportArguments(made.record, options);
        QVERIFY(result.wait(longWait));
        const auto calls = faketools::calls(made.record.absoluteFilePath);
        QCOMPARE(calls.size(), i + 1);
        QCOMPARE(calls.last().tool, QString("ffmpeg.exe"));
        QCOMPARE(calls.last().arguments, wantedList(made.record, options));
    }
}

QTEST_GUILESS_MAIN(TestExportLists)
#include "tst_exportlists.moc"
