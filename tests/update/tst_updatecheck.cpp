// SPDX-License-Identifier: MIT
#include "tests/update/httpserver.h"
#include "update/updatecheck.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QSysInfo>
#include <QTest>

namespace
{

QByteArray goodDescriptor()
{
    return "<a><MAJORVERSION>2</MAJORVERSION><MINORVERSION>5</MINORVERSION>"
           "<OSTRELAPP url='http://host/a.zip'/><DESCRIPTION>Faster.</DESCRIPTION></a>";
}

constexpr int patience = 30000; // [ms]

/// An update check against a server of this machine, with eyes on both.
struct Check {
    explicit Check(HttpServer &server)
        : update(nullptr, server.url()),
          announced(&update, &UpdateCheck::currentVersionInfo),
          finished(update.findChild<QNetworkAccessManager *>(), &QNetworkAccessManager::finished)
    {
        update.requestVersionInfo();
    }
    UpdateCheck update;
    QSignalSpy announced;
    QSignalSpy finished;
};

} // namespace

class TestUpdateCheck : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void theAddressIsFixed();
    void usableDescriptorsAreTold_data();
    void usableDescriptorsAreTold();
    void theRequestNamesTheProgram();
    void oneRequestIsSent();
    void failuresAreSilent_data();
    void failuresAreSilent();
    void aRefusedConnectionIsSilent();
    void aCutConnectionIsSilent();
    void aServerThatNeverAnswersIsLeftAlone();
    void aRedirectionIsNotFollowed();
    void aHugeBodyIsNotReadToItsEnd();
    void aCompressedBodyIsNotAskedForNorUnfolded();
};

void TestUpdateCheck::initTestCase()
{
    qRegisterMetaType<QNetworkReply *>();
}

void TestUpdateCheck::theAddressIsFixed()
{
    QVERIFY(updateDescriptorUrl.isValid());
    QCOMPARE(updateDescriptorUrl.scheme(), QString("http"));
    QCOMPARE(updateDescriptorUrl.path(), QString("/qvt_timecodetool_appinfo_win.xml"));
    QVERIFY(!updateDescriptorUrl.host().isEmpty());
}

void TestUpdateCheck::usableDescriptorsAreTold_data()
{
    QTest::addColumn<QByteArray>("numbers");
    QTest::addColumn<uint>("majorVersion");
    QTest::addColumn<uint>("minorVersion");
    const auto numbers = [](const QByteArray &major, const QByteArray &minor) {
        return "<MAJORVERSION>" + major + "</MAJORVERSION><MINORVERSION>" + minor + "</MINORVERSION>";
    };
    QTest::newRow("newer") << numbers("2", "5") << 2U << 5U;
    QTest::newRow("the same") << numbers("1", "0") << 1U << 0U;
    QTest::newRow("older") << numbers("0", "9") << 0U << 9U;
    QTest::newRow("numbers that are none") << numbers("two", "") << 0U << 0U;
}

void TestUpdateCheck::usableDescriptorsAreTold()
{
    QFETCH(QByteArray, numbers);
    HttpServer server;
    server.answer("200 OK", "<a>" + numbers +
                                "<OSTRELAPP url='http://host/a.zip'/><DESCRIPTION>Faster.</DESCRIPTION></a>");
    Check check(server);
    QTRY_COMPARE_WITH_TIMEOUT(check.announced.count(), 1, patience);
    const QList<QVariant> announced = check.announced.at(0);
    QTEST(announced.at(0).toUInt(), "majorVersion");
    QTEST(announced.at(1).toUInt(), "minorVersion");
    QCOMPARE(announced.at(2).toString(), QString("Faster."));
    QCOMPARE(announced.at(3).toUrl(), QUrl("http://host/a.zip"));
}

void TestUpdateCheck::theRequestNamesTheProgram()
{
    HttpServer server;
    server.answer("200 OK", goodDescriptor());
    Check check(server);
    QTRY_COMPARE_WITH_TIMEOUT(check.finished.count(), 1, patience);
    const QByteArray request = server.lastRequest();
    QVERIFY(request.startsWith("GET /qvt_timecodetool_appinfo_win.xml HTTP/1.1\r\n"));
    const QByteArray header = "\r\nuser-agent: "; // Qt may write it in capitals
    const auto begin = request.toLower().indexOf(header);
    QVERIFY2(begin > 0, request.constData());
    const QString userAgent = "Ostrel Timecode Tool V1.0 " + QSysInfo::prettyProductName() + " (" +
                              QSysInfo::currentCpuArchitecture() + ")\r\n";
    QVERIFY2(request.mid(begin + header.size()).startsWith(userAgent.toLatin1()), request.constData());
}

void TestUpdateCheck::oneRequestIsSent()
{
    HttpServer server;
    server.answer("503 Service Unavailable", {}, "Retry-After: 0\r\n");
    Check check(server);
    QTRY_COMPARE_WITH_TIMEOUT(check.finished.count(), 1, patience);
    QCOMPARE(server.requestCount(), 1);
}

void TestUpdateCheck::failuresAreSilent_data()
{
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("lines");
    QTest::newRow("not found") << QByteArray("404 Not Found") << goodDescriptor() << QByteArray();
    QTest::newRow("server error") << QByteArray("500 Internal Server Error") << goodDescriptor()
                                  << QByteArray();
    QTest::newRow("asks for a password") << QByteArray("401 Unauthorized") << goodDescriptor()
                                         << QByteArray("WWW-Authenticate: Basic realm=\"x\"\r\n");
    QTest::newRow("no content") << QByteArray("200 OK") << QByteArray() << QByteArray();
    QTest::newRow("not XML") << QByteArray("200 OK") << QByteArray("It works!") << QByteArray();
    QTest::newRow("no link") << QByteArray("200 OK")
                             << QByteArray("<a><MAJORVERSION>2</MAJORVERSION><MINORVERSION>0</MINORVERSION>"
                                           "<DESCRIPTION>Faster.</DESCRIPTION></a>")
                             << QByteArray();
    QTest::newRow("no minor number") << QByteArray("200 OK")
                                     << QByteArray("<a><MAJORVERSION>2</MAJORVERSION>"
                                                   "<OSTRELAPP url='http://host/a.zip'/></a>")
                                     << QByteArray();
}

void TestUpdateCheck::failuresAreSilent()
{
    QFETCH(QByteArray, status);
    QFETCH(QByteArray, body);
    QFETCH(QByteArray, lines);
    HttpServer server;
    server.answer(status, body, lines);
    Check check(server);
    QTRY_COMPARE_WITH_TIMEOUT(check.finished.count(), 1, patience);
    QCOMPARE(check.announced.count(), 0);
}

void TestUpdateCheck::aRefusedConnectionIsSilent()
{
    HttpServer server;
    const QUrl url = server.url();
    server.close();
    UpdateCheck update(nullptr, url);
    QSignalSpy announced(&update, &UpdateCheck::currentVersionInfo);
    QSignalSpy finished(update.findChild<QNetworkAccessManager *>(), &QNetworkAccessManager::finished);
    update.requestVersionInfo();
    QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, patience);
    QCOMPARE(announced.count(), 0);
}

void TestUpdateCheck::aCutConnectionIsSilent()
{
    HttpServer server;
    server.answer("200 OK", goodDescriptor());
    server.cutBodyAfter(static_cast<int>(goodDescriptor().size()) - 4);
    Check check(server);
    QTRY_COMPARE_WITH_TIMEOUT(check.finished.count(), 1, patience);
    QCOMPARE(check.announced.count(), 0);
}

void TestUpdateCheck::aServerThatNeverAnswersIsLeftAlone()
{
    HttpServer server;
    server.neverAnswer();
    {
        Check check(server);
        QTRY_COMPARE_WITH_TIMEOUT(server.requestCount(), 1, patience);
        QCOMPARE(check.finished.count(), 0);
        QCOMPARE(check.announced.count(), 0);
    }
    // The end of the program does not wait for it.
    QTRY_COMPARE_WITH_TIMEOUT(server.openConnections(), 0, patience);
}

void TestUpdateCheck::aRedirectionIsNotFollowed()
{
    HttpServer elsewhere;
    elsewhere.answer("200 OK", goodDescriptor());
    HttpServer server;
    server.answer("302 Found", {}, "Location: " + elsewhere.url().toEncoded() + "\r\n");
    Check check(server);
    QTRY_COMPARE_WITH_TIMEOUT(check.finished.count(), 1, patience);
    QCOMPARE(check.announced.count(), 0);
    QCOMPARE(elsewhere.requestCount(), 0);
}

void TestUpdateCheck::aHugeBodyIsNotReadToItsEnd()
{
    constexpr qint64 hugeBody = qint64{50} * 1024 * 1024;   // [bytes]
    constexpr qint64 saneAmount = qint64{10} * 1024 * 1024; // [bytes] the limit and what the sockets hold
    HttpServer server;
    server.answer("200 OK", goodDescriptor());
    server.stretchBodyTo(hugeBody);
    Check check(server);
    QTRY_COMPARE_WITH_TIMEOUT(check.finished.count(), 1, patience);
    QCOMPARE(check.announced.count(), 0);
    QVERIFY2(server.sentBytes() < saneAmount, qPrintable(QString::number(server.sentBytes())));
}

void TestUpdateCheck::aCompressedBodyIsNotAskedForNorUnfolded()
{
    HttpServer server;
    server.answer("200 OK", qCompress(goodDescriptor()).mid(4), "Content-Encoding: deflate\r\n");
    Check check(server);
    QTRY_COMPARE_WITH_TIMEOUT(check.finished.count(), 1, patience);
    QVERIFY(!server.lastRequest().contains("gzip"));
    QCOMPARE(check.announced.count(), 0);
}

QTEST_GUILESS_MAIN(TestUpdateCheck)
#include "tst_updatecheck.moc"
