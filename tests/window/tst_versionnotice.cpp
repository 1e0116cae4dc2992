// SPDX-License-Identifier: MIT
#include "app/versionnotice.h"

#include <QTest>

namespace
{

QString beginning(const QString &link)
{
    return "<p style='margin-right:5em;'> There is a new software version available!<br>You can download it "
           "from the "
           "following link:<br><a href='" +
           link + "'>" + link + "</a></p>";
}

} // namespace

class TestVersionNotice : public QObject
{
    Q_OBJECT

private slots:
    void theNoticeShowsLinkAndDescription_data();
    void theNoticeShowsLinkAndDescription();
    void whatWouldLoadSomethingIsShownAsPlainText_data();
    void whatWouldLoadSomethingIsShownAsPlainText();
    void aHostileLinkIsEscaped();
    void onlyWebPagesAreOpened_data();
    void onlyWebPagesAreOpened();
};

void TestVersionNotice::theNoticeShowsLinkAndDescription_data()
{
    QTest::addColumn<QString>("description");
    QTest::addColumn<QString>("rest");
    QTest::newRow("without description") << ""
                                         << "";
    QTest::newRow("plain") << "Faster."
                           << "Details:<br><i>Faster.</i>";
    QTest::newRow("rich text stays") << "<b>New:</b><ul><li>a & b</li></ul>"
                                     << "Details:<br><i><b>New:</b><ul><li>a & b</li></ul></i>";
    QTest::newRow("percent signs") << "100%1 %2"
                                   << "Details:<br><i>100%1 %2</i>";
    QTest::newRow("a script is not run") << "<script>alert(1)</script>"
                                         << "Details:<br><i><script>alert(1)</script></i>";
}

void TestVersionNotice::theNoticeShowsLinkAndDescription()
{
    QFETCH(QString, description);
    QFETCH(QString, rest);
    const QString link("http://host/a.zip?b=1");
    QCOMPARE(versionnotice::text(QUrl(link), description), beginning(link) + rest);
}

void TestVersionNotice::whatWouldLoadSomethingIsShownAsPlainText_data()
{
    QTest::addColumn<QString>("description");
    QTest::newRow("a picture from the network") << "<img src='http://host/spy.png'>";
    QTest::newRow("a local file without end") << "<img src='file:///dev/zero'>";
    QTest::newRow("a picture named by a character code") << "<&#105;mg src='file:///dev/zero'>";
    QTest::newRow("a picture in a table") << "<table><tr><td><img src=\"x.png\"></td></tr></table>";
    QTest::newRow("a style sheet") << "<link rel='stylesheet' type='text/css' href='file:///etc/passwd'>";
    QTest::newRow("an imported style sheet") << "<style>@import url('x.css');</style>";
    QTest::newRow("a background picture")
        << "<table background='file:///dev/zero'><tr><td>x</td></tr></table>";
}

void TestVersionNotice::whatWouldLoadSomethingIsShownAsPlainText()
{
    QFETCH(QString, description);
    const QString text = versionnotice::text(QUrl("http://host/a.zip"), description);
    QVERIFY2(text.endsWith("Details:<br><i>" + description.toHtmlEscaped().replace('\'', "&#39;") + "</i>"),
             qPrintable(text));
}

void TestVersionNotice::aHostileLinkIsEscaped()
{
    const QUrl link("http://host/' style='background-image:url(file:///dev/zero)");
    const QString text = versionnotice::text(link, "<img src='x.png'>");
    QVERIFY(!text.contains("host/'"));
}

void TestVersionNotice::onlyWebPagesAreOpened_data()
{
    QTest::addColumn<QString>("link");
    QTest::addColumn<bool>("opened");
    QTest::newRow("http") << "http://host/a.zip" << true;
    QTest::newRow("https") << "https://host/a.zip" << true;
    QTest::newRow("a local file") << "file:///usr/bin/yes" << false;
    QTest::newRow("a script") << "javascript:alert(1)" << false;
    QTest::newRow("a path") << "/usr/bin/yes" << false;
    QTest::newRow("nothing") << "" << false;
}

void TestVersionNotice::onlyWebPagesAreOpened()
{
    QFETCH(QString, link);
    QTEST(versionnotice::mayOpenLink(QUrl(link)), "opened");
}

QTEST_MAIN(TestVersionNotice)
#include "tst_versionnotice.moc"
