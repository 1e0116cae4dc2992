// SPDX-License-Identifier: MIT
#include "app/mainwindow.h"
#include "app/records/recordtypes.h"
#include "testkit/media/expectedcell.h"
#include "testkit/media/samplekit.h"
#include "testkit/windowdriver/windowdriver.h"

#include <QtTest>

/// The whole program on every situation of the sample kit.
class TestSamplesInWindow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void windowShowsWhatTheKitPromises_data();
    void windowShowsWhatTheKitPromises();

private:
    QTemporaryDir folder;
    QMap<QString, QStringList> rows;
};

void TestSamplesInWindow::initTestCase()
{
    const QString kit = folder.filePath("kit");
    QCOMPARE(mediakit::writeSampleKit(kit), QString());

    registerRecordTypes();
    MainWindow window;
    window.show();
    WindowDriver driver(window, folder.path());
    driver.dropFolder(kit);
    QVERIFY(driver.waitForStatus("Status: import ready", "importing"));
    const QVector<mediakit::Sample> samples = mediakit::sampleKit();
    for (const mediakit::Sample &sample : samples)
        rows[sample.recording.path] = driver.row(sample.recording.path);
}

void TestSamplesInWindow::windowShowsWhatTheKitPromises_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("audioTC");
    const QVector<mediakit::Sample> samples = mediakit::sampleKit();
    for (const mediakit::Sample &sample : samples)
        QTest::newRow(qPrintable(sample.situation))
            << sample.recording.path << mediakit::expectedAudioTC(sample.recording);
}

void TestSamplesInWindow::windowShowsWhatTheKitPromises()
{
    QFETCH(QString, fileName);
    QTEST(rows[fileName].value(3), "audioTC");
}

QTEST_MAIN(TestSamplesInWindow)
#include "tst_samplesinwindow.moc"
