// SPDX-License-Identifier: MIT
#include "update/versiondescriptor.h"

#include <QTest>

class TestVersionDescriptor : public QObject
{
    Q_OBJECT

private slots:
    void usableDescriptorsAreRead_data();
    void usableDescriptorsAreRead();
    void descriptorsThatLackSomethingAreIgnored_data();
    void descriptorsThatLackSomethingAreIgnored();
    void onlyNewerVersionsAreNewer_data();
    void onlyNewerVersionsAreNewer();
};

void TestVersionDescriptor::usableDescriptorsAreRead_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<uint>("majorVersion");
    QTest::addColumn<uint>("minorVersion");
    QTest::addColumn<QString>("link");
    QTest::addColumn<QString>("description");
    const QByteArray link("<OSTRELAPP url='http://host/a.zip'/>");
    const QString linkText("http://host/a.zip");

    QTest::newRow("complete") << QByteArray("<?xml version='1.0'?><app><MAJORVERSION>1</MAJORVERSION>"
                                            "<MINORVERSION>12</MINORVERSION>") +
                                     link + "<DESCRIPTION>Faster.</DESCRIPTION></app>"
                              << 1U << 12U << linkText << "Faster.";
    QTest::newRow("at any depth, among others") << "<a><x/><b><MAJORVERSION>2</MAJORVERSION></b><c><d>" +
                                                       link + "</d><MINORVERSION>0</MINORVERSION></c></a>"
                                                << 2U << 0U << linkText << "";
    QTest::newRow("the description comes first")
        << "<a><DESCRIPTION>x</DESCRIPTION><MAJORVERSION>2</MAJORVERSION><MINORVERSION>3</MINORVERSION>" +
               link + "</a>"
        << 2U << 3U << linkText << "x";
    QTest::newRow("an empty description")
        << "<a><MAJORVERSION>2</MAJORVERSION><MINORVERSION>3</MINORVERSION>" + link + "<DESCRIPTION/></a>"
        << 2U << 3U << linkText << "";
    QTest::newRow("an escaped description")
        << "<a><MAJORVERSION>2</MAJORVERSION><MINORVERSION>3</MINORVERSION>" + link +
               "<DESCRIPTION>&lt;b&gt;bold&lt;/b&gt;</DESCRIPTION></a>"
        << 2U << 3U << linkText << "<b>bold</b>";
    QTest::newRow("numbers that are none read as 0")
        << "<a><MAJORVERSION>two</MAJORVERSION><MINORVERSION>-1</MINORVERSION>" + link + "</a>" << 0U << 0U
        << linkText << "";
    QTest::newRow("a number too large reads as 0")
        << "<a><MAJORVERSION>4294967296</MAJORVERSION><MINORVERSION>1</MINORVERSION>" + link + "</a>" << 0U
        << 1U << linkText << "";
    QTest::newRow("one number twice and a link leave the other 0")
        << "<a><MAJORVERSION>2</MAJORVERSION><MAJORVERSION>3</MAJORVERSION>" + link + "</a>" << 3U << 0U
        << linkText << "";
    QTest::newRow("what was met before an error counts")
        << "<a><MAJORVERSION>2</MAJORVERSION><MINORVERSION>3</MINORVERSION>" + link + "</b>" << 2U << 3U
        << linkText << "";
    QTest::newRow("cut off") << "<a><MAJORVERSION>2</MAJORVERSION><MINORVERSION>3</MINORVERSION>" + link +
                                    "<DESCRIPTION>It"
                             << 2U << 3U << linkText << "";
    QTest::newRow("the text of the link element is not used")
        << QByteArray("<a><MAJORVERSION>2</MAJORVERSION><MINORVERSION>3</MINORVERSION>"
                      "<OSTRELAPP other='x' url='http://host/a.zip'>http://other</OSTRELAPP></a>")
        << 2U << 3U << linkText << "";
}

void TestVersionDescriptor::usableDescriptorsAreRead()
{
    QFETCH(QByteArray, xml);
    const auto descriptor = readVersionDescriptor(xml);
    QVERIFY(descriptor);
    QTEST(descriptor->majorVersion, "majorVersion");
    QTEST(descriptor->minorVersion, "minorVersion");
    QTEST(descriptor->downloadLink.toString(), "link");
    QTEST(descriptor->description, "description");
}

void TestVersionDescriptor::descriptorsThatLackSomethingAreIgnored_data()
{
    QTest::addColumn<QByteArray>("xml");
    const QByteArray numbers("<MAJORVERSION>2</MAJORVERSION><MINORVERSION>3</MINORVERSION>");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("not XML") << QByteArray("{\"MAJORVERSION\": 2}");
    QTest::newRow("binary") << QByteArray("\0\xff\xfe<<<", 6);
    QTest::newRow("another document") << QByteArray("<html><body>It works!</body></html>");
    QTest::newRow("numbers and description, no link") << "<a>" + numbers + "<DESCRIPTION>x</DESCRIPTION></a>";
    QTest::newRow("a link without an address") << "<a>" + numbers + "<OSTRELAPP href='http://host'/></a>";
    QTest::newRow("one number and a link")
        << QByteArray("<a><MAJORVERSION>2</MAJORVERSION><OSTRELAPP url='x'/></a>");
    QTest::newRow("names in lower case") << QByteArray(
        "<a><majorversion>2</majorversion><minorversion>3</minorversion><ostrelapp url='x'/></a>");
    QTest::newRow("only descriptions") << QByteArray(
        "<a><DESCRIPTION>a</DESCRIPTION><DESCRIPTION>b</DESCRIPTION><DESCRIPTION>c</DESCRIPTION></a>");
    QTest::newRow("an error before the third") << "<a>" + numbers + "</b><OSTRELAPP url='x'/>";
    QByteArray bomb("<!DOCTYPE a [<!ENTITY l0 'lol'>");
    for (int i = 1; i < 12; ++i) {
        const QByteArray before = "&l" + QByteArray::number(i - 1) + ";";
        bomb += "<!ENTITY l" + QByteArray::number(i) + " '" + before.repeated(10) + "'>";
    }
    QTest::newRow("entities without end") << bomb + "]><a><MAJORVERSION>&l11;</MAJORVERSION></a>";
}

void TestVersionDescriptor::descriptorsThatLackSomethingAreIgnored()
{
    QFETCH(QByteArray, xml);
    QVERIFY(!readVersionDescriptor(xml));
}

void TestVersionDescriptor::onlyNewerVersionsAreNewer_data()
{
    QTest::addColumn<uint>("majorVersion");
    QTest::addColumn<uint>("minorVersion");
    QTest::addColumn<bool>("newer");
    QTest::newRow("0.0") << 0U << 0U << false;
    QTest::newRow("0.9") << 0U << 9U << false;
    QTest::newRow("1.0") << 1U << 0U << false;
    QTest::newRow("1.1") << 1U << 1U << true;
    QTest::newRow("2.0") << 2U << 0U << true;
    QTest::newRow("10.5") << 10U << 5U << true;
}

void TestVersionDescriptor::onlyNewerVersionsAreNewer()
{
    QFETCH(uint, majorVersion);
    QFETCH(uint, minorVersion);
    QTEST(isNewerVersion(majorVersion, minorVersion), "newer");
}

QTEST_APPLESS_MAIN(TestVersionDescriptor)
#include "tst_versiondescriptor.moc"
