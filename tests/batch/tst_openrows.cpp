// SPDX-License-Identifier: MIT
#include "batch/openrows.h"

#include <QTest>
#include <QTimeZone>

class TestOpenRows : public QObject
{
    Q_OBJECT

private slots:
    void aMovieIsSettledByItsLastStream();
    void aFailureSettlesAtOnce();
    void aFileWithoutSoundAwaitsItsFailure();
    void soundFilesOfOneMomentSettleTogether();
    void soundFilesOfOtherMomentsDoNotWait();
    void theEndSettlesTheRestOnce();
};

namespace
{

FileData file(const QString &suffix, int minute = 0)
{
    FileData record;
    record.suffix = suffix;
    record.lastModified = QDateTime(QDate(2024, 5, 3), QTime(9, minute), QTimeZone::utc());
    return record;
}

} // namespace

void TestOpenRows::aMovieIsSettledByItsLastStream()
{
    OpenRows open;
    open.add(file("mov"));
    open.takeProbe(0, 2);
    QCOMPARE(open.takeReading(0), QVector<int>());
    QCOMPARE(open.takeReading(0), QVector<int>{0});
    QCOMPARE(open.takeReading(0), QVector<int>()); // it is reported once
}

void TestOpenRows::aFailureSettlesAtOnce()
{
    OpenRows open;
    open.add(file("mov"));
    open.add(file("mov"));
    QCOMPARE(open.takeFailure(1), QVector<int>{1}); // not even probed
    open.takeProbe(0, 3);
    QCOMPARE(open.takeFailure(0), QVector<int>{0});
}

void TestOpenRows::aFileWithoutSoundAwaitsItsFailure()
{
    OpenRows open;
    open.add(file("mov"));
    open.takeProbe(0, 0);
    QCOMPARE(open.takeFailure(0), QVector<int>{0});
}

void TestOpenRows::soundFilesOfOneMomentSettleTogether()
{
    OpenRows open;
    for (const char *suffix : {"wav", "mov", "WAV"})
        open.add(file(suffix));
    for (int row = 0; row < 3; ++row)
        open.takeProbe(row, 1);
    QCOMPARE(open.takeReading(2), QVector<int>());
    QCOMPARE(open.takeReading(1), QVector<int>{1});
    QCOMPARE(open.takeReading(0), (QVector<int>{0, 2}));
}

void TestOpenRows::soundFilesOfOtherMomentsDoNotWait()
{
    OpenRows open;
    open.add(file("wav", 1));
    open.add(file("wav", 2));
    open.takeProbe(0, 1);
    QCOMPARE(open.takeReading(0), QVector<int>{0});
}

void TestOpenRows::theEndSettlesTheRestOnce()
{
    OpenRows open;
    for (int row = 0; row < 3; ++row)
        open.add(file("mov"));
    open.takeFailure(1);
    QCOMPARE(open.takeRest(), (QVector<int>{0, 2}));
    QCOMPARE(open.takeRest(), QVector<int>());
}

QTEST_APPLESS_MAIN(TestOpenRows)
#include "tst_openrows.moc"
