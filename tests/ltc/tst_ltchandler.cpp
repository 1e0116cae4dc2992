// SPDX-License-Identifier: MIT
#include "ltc/ltchandler.h"
#include "testkit/faketools/faketools.h"
#include "testkit/fixtures/longwait.h"

#include <QFile>
#include <QJsonArray>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

class TestLTCHandler : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void signalsAndSlotsStandInTheirOrder();
    void theReaderIsCalledWithItsArguments_data();
    void theReaderIsCalledWithItsArguments();
    void theUsersOptionsGoToTheReader();
    void outputIsReportedWithTheExitCode_data();
    void outputIsReportedWithTheExitCode();
    void aCrashIsAFailure();
    void aMissingReaderIsReportedLater();
    void aHandlerThatGoesTakesItsReaderWithIt();
    void manyReadersRunSideBySide();

private:
    QString makeFile(const QString &name) const;

    QScopedPointer<QTemporaryDir> folder;
    QByteArray searchPath; ///< restored after each test
    QStringList reported;  ///< files that readers of the running test have reported
};

namespace
{

QJsonObject doing(const QJsonArray &actions, int exitCode = 0)
{
    return {{"read", QJsonObject{{"actions", actions}, {"exitCode", exitCode}}}};
}

QJsonObject print(const QString &chunk)
{
    return {{"stdout", chunk}};
}

} // namespace

void TestLTCHandler::init()
{
    folder.reset(new QTemporaryDir);
    searchPath = qgetenv("PATH");
    reported.clear();
}

void TestLTCHandler::cleanup()
{
    qputenv("PATH", searchPath);
}

QString TestLTCHandler::makeFile(const QString &name) const
{
    QString path = folder->filePath(name);
    faketools::openGate(path);
    return path;
}

void TestLTCHandler::signalsAndSlotsStandInTheirOrder()
{
    const QMetaObject &meta = LTCHandler::staticMetaObject;
    QStringList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        methods += QString::fromLatin1(meta.method(i).methodSignature());
    const QStringList expected{"ltcReaderResult(LTCHandler*,QJsonObject,QString,int)",
                               "couldNotStart(LTCHandler*)", "ltcReaderReady()", "ltcReaderFinished(int)"};
    QCOMPARE(methods, expected);
}

void TestLTCHandler::theReaderIsCalledWithItsArguments_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("goPro");

    QTest::newRow("plain") << "a_1_4.wav" << false;
    QTest::newRow("GoPro") << "a_1_4.wav" << true;
    QTest::newRow("blanks and percent signs") << "take %1 100%_1_4.wav" << false;
    QTest::newRow("leading dash") << "-aSLOPE_1_4.wav" << false;
    QTest::newRow("quotes") << "it's \"b\"_1_4.wav" << false;
    QTest::newRow("unicode") << QString::fromUtf8("\u00dcbung \U0001F3AC_1_4.wav") << false;
}

void TestLTCHandler::theReaderIsCalledWithItsArguments()
{
    QFETCH(QString, name);
    QFETCH(bool, goPro);

    const QString path = makeFile(name);
    LTCHandler handler(nullptr);
    QSignalSpy result(&handler, &LTCHandler::ltcReaderResult);
    handler.readTimecode(path, goPro);
    QVERIFY(result.wait(longWait));

    const auto calls = faketools::calls(path);
    QCOMPARE(calls.size(), 1);
    QCOMPARE(calls[0].tool, QString("LTCReader.exe"));
    QCOMPARE(calls[0].arguments, goPro ? QStringList({path, "-aSLOPE"}) : QStringList{path});

    QCOMPARE(result[0][0].value<LTCHandler *>(), &handler);
    QCOMPARE(result[0][1].toJsonObject()["Timecode"].toString(), QString("10:00:00:00"));
    QCOMPARE(result[0][2].toString(), path);
    QCOMPARE(result[0][3].toInt(), 0);
}

void TestLTCHandler::theUsersOptionsGoToTheReader()
{
    const QString path = makeFile("a.wav");
    LTCHandler handler(nullptr);
    QSignalSpy result(&handler, &LTCHandler::ltcReaderResult);
    handler.readTimecode(path, AudioTCOptions{2, 3, 29.97, false}, true);
    QVERIFY(result.wait(longWait));
    QCOMPARE(faketools::calls(path).value(0).arguments, (QStringList{path, "-c3", "-f29.97", "-aMID"}));
}

void TestLTCHandler::outputIsReportedWithTheExitCode_data()
{
    QTest::addColumn<QJsonObject>("plan");
    QTest::addColumn<QJsonObject>("expected");
    QTest::addColumn<int>("exitCode");

    const QJsonObject pause{{"pauseMs", 30}};
    const QJsonObject tenHours{{"Timecode", "10:00:00:00"}};
    QTest::newRow("in one piece") << doing({print(R"({"Timecode":"10:00:00:00"})")}) << tenHours << 0;
    QTest::newRow("in several chunks")
        << doing({print(R"({"Time)"), pause, print(R"(code":"10:00)"), pause, print(R"(:00:00"})")})
        << tenHours << 0;
    QTest::newRow("without a closing brace")
        << doing({print(R"({"Timecode":"10:00:00:00")")}) << QJsonObject() << 0;
    QTest::newRow("an array") << doing({print("[1]")}) << QJsonObject() << 0;
    QTest::newRow("no output") << doing({}) << QJsonObject() << 0;
    QTest::newRow("standard error is not read")
        << doing({QJsonObject{{"stderr", "{}"}}}, 205) << QJsonObject() << 205;
    QTest::newRow("channel out of range") << doing({}, 202) << QJsonObject() << 202;
    QTest::newRow("an unknown code with output")
        << doing({print(R"({"Timecode":"10:00:00:00"})")}, 7) << tenHours << 7;
}

void TestLTCHandler::outputIsReportedWithTheExitCode()
{
    QFETCH(QJsonObject, plan);
    QFETCH(QJsonObject, expected);
    QFETCH(int, exitCode);

    const QString path = makeFile("a.wav");
    faketools::setPlan(path, plan);
    LTCHandler handler(nullptr);
    QSignalSpy result(&handler, &LTCHandler::ltcReaderResult);
    handler.readTimecode(path, false);
    QVERIFY(result.wait(longWait));
    QCOMPARE(result[0][1].toJsonObject(), expected);
    QCOMPARE(result[0][3].toInt(), exitCode);
}

void TestLTCHandler::aCrashIsAFailure()
{
    const QString path = makeFile("a.wav");
    faketools::setPlan(path, {{"read", QJsonObject{{"crash", true}}}});
    LTCHandler handler(nullptr);
    QSignalSpy result(&handler, &LTCHandler::ltcReaderResult);
    QSignalSpy couldNotStart(&handler, &LTCHandler::couldNotStart);
    handler.readTimecode(path, false);
    QVERIFY(result.wait(longWait));
    QCOMPARE(result[0][1].toJsonObject(), QJsonObject());
    QVERIFY(result[0][3].toInt() != 0);
    QCoreApplication::processEvents();
    QCOMPARE(couldNotStart.count(), 0);
}

void TestLTCHandler::aMissingReaderIsReportedLater()
{
    qputenv("PATH", QFile::encodeName(folder->path()));
    LTCHandler handler(nullptr);
    QSignalSpy result(&handler, &LTCHandler::ltcReaderResult);
    QSignalSpy couldNotStart(&handler, &LTCHandler::couldNotStart);
    handler.readTimecode(makeFile("a.wav"), false);
    QCOMPARE(couldNotStart.count(), 0);
    QVERIFY(couldNotStart.wait(longWait));
    QCOMPARE(couldNotStart.count(), 1);
    QCOMPARE(couldNotStart[0][0].value<LTCHandler *>(), &handler);
    QCOMPARE(result.count(), 0);
}

void TestLTCHandler::aHandlerThatGoesTakesItsReaderWithIt()
{
    const QString path = makeFile("a.wav");
    faketools::setPlan(path, {{"read", QJsonObject{{"hang", true}}}});
    auto *const handler = new LTCHandler(nullptr);
    QSignalSpy result(handler, &LTCHandler::ltcReaderResult);
    handler->readTimecode(path, false);
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(path).size(), 1, longWait);
    delete handler;
    QVERIFY(!faketools::isAlive(faketools::calls(path).value(0).processId));
    QCOMPARE(result.count(), 0);
}

void TestLTCHandler::manyReadersRunSideBySide()
{
    constexpr int readers = 30;
    faketools::setDefaultPlan(folder->path(), {{"read", QJsonObject{{"waitFor", "gate"}}}});

    QObject owner;
    for (int i = 0; i < readers; ++i) {
        auto *const handler = new LTCHandler(&owner);
        connect(handler, &LTCHandler::ltcReaderResult, this,
                [this](LTCHandler *, const QJsonObject &, const QString &path, int) { reported += path; });
        handler->readTimecode(makeFile(QString("%1.wav").arg(i)), false);
    }
    const auto running = [this] {
        qsizetype count = 0;
        for (int i = 0; i < readers; ++i)
            count += faketools::calls(folder->filePath(QString("%1.wav").arg(i))).size();
        return count;
    };
    QTRY_COMPARE_WITH_TIMEOUT(running(), readers, longWait);
    QCOMPARE(reported.size(), 0);

    faketools::openGate(folder->filePath("gate"));
    QTRY_COMPARE_WITH_TIMEOUT(reported.size(), readers, longWait);
    reported.removeDuplicates();
    QCOMPARE(reported.size(), readers);
}

QTEST_GUILESS_MAIN(TestLTCHandler)
#include "tst_ltchandler.moc"
