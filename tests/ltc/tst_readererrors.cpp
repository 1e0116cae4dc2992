// SPDX-License-Identifier: MIT
#include "ltc/readererrors.h"

#include <QTest>

class TestReaderErrors : public QObject
{
    Q_OBJECT

private slots:
    void exitCodesHaveTheirTexts_data();
    void exitCodesHaveTheirTexts();
};

void TestReaderErrors::exitCodesHaveTheirTexts_data()
{
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("text");

    QTest::newRow("100, with its two n") << 100 << "innsufficient arguments for LTCReader";
    QTest::newRow("101") << 101 << "unsupported output format";
    QTest::newRow("102") << 102 << "unsupported parameter for LTCReader";
    QTest::newRow("103") << 103 << "unsupported reading algorithm";
    QTest::newRow("201") << 201 << "could not open file";
    QTest::newRow("202") << 202 << "channel number out of range";
    QTest::newRow("203") << 203 << "invalid framerate";
    QTest::newRow("204") << 204 << "could not initialize sample reader";
    QTest::newRow("205") << 205 << "audio TC not found";
    QTest::newRow("1000") << 1000 << "error while reading file data";
    QTest::newRow("1001") << 1001 << "couldn't read file data";
    QTest::newRow("2001") << 2001 << "couldn't get audio track from file";
    QTest::newRow("success") << 0 << "";
    QTest::newRow("7 means nothing") << 7 << "";
    QTest::newRow("a signal's number") << 11 << "";
    QTest::newRow("below 0") << -1 << "";
}

void TestReaderErrors::exitCodesHaveTheirTexts()
{
    QFETCH(int, exitCode);
    QFETCH(QString, text);
    QCOMPARE(readerErrorText(exitCode), text);
}

QTEST_APPLESS_MAIN(TestReaderErrors)
#include "tst_readererrors.moc"
