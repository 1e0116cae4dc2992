// SPDX-License-Identifier: MIT
#include "ffmpeg/outputname.h"
#include "testkit/fixtures/row.h"

#include <QSet>
#include <QTest>

using outputname::Container;
Q_DECLARE_METATYPE(Container)

class TestOutputName : public QObject
{
    Q_OBJECT

private slots:
    void theContainerFollowsTypeAndInput_data();
    void theContainerFollowsTypeAndInput();
    void theOutputIsNamedAfterTheInput_data();
    void theOutputIsNamedAfterTheInput();
    void takenNamesAreCountedUp_data();
    void takenNamesAreCountedUp();
    void theSearchEndsAtTheLastNumber();
};

void TestOutputName::theContainerFollowsTypeAndInput_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<int>("videoType");
    QTest::addColumn<Container>("expected");

    for (int type = 1; type <= 4; ++type)
        QTest::addRow("MXF type %d", type) << "/a.mov" << type << Container::Mxf;
    for (int type = 5; type <= 8; ++type)
        QTest::addRow("QuickTime type %d", type) << "/a.mxf" << type << Container::QuickTime;
    row("pass through of MOV", "/a.mov", 0, Container::AsInput);
    row("pass through of MXF", "/a.MXF", 0, Container::AsInput);
    row("pass through of MTS", "/a.MTS", 0, Container::QuickTime);
    row("pass through of mp4", "/a.mp4", 0, Container::QuickTime);
    row("pass through without a suffix", "/a", 0, Container::AsInput);
    row("a name that only begins alike", "/a.mp4x", 0, Container::AsInput);
    for (int type = 0; type <= 8; ++type)
        QTest::addRow("WAV with type %d", type) << "/a.Wav" << type << Container::BroadcastWave;
}

void TestOutputName::theContainerFollowsTypeAndInput()
{
    QFETCH(QString, input);
    QFETCH(int, videoType);
    QFETCH(Container, expected);
    QCOMPARE(outputname::containerFor(input, videoType), expected);
}

void TestOutputName::theOutputIsNamedAfterTheInput_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<Container>("container");
    QTest::addColumn<QString>("expected");

    row("MXF", "/in/a.mov", "/out", Container::Mxf, "/out/a.MXF");
    row("QuickTime", "/in/a.mts", "/out", Container::QuickTime, "/out/a.MOV");
    row("broadcast wave", "/in/a.wav", "/out", Container::BroadcastWave, "/out/a.WAV");
    row("suffix of the input", "/in/a.Mov", "/out", Container::AsInput, "/out/a.Mov");
    row("dots in the name stay", "/in/A001.take1.wav", "/out", Container::BroadcastWave,
        "/out/A001.take1.WAV");
    row("dots in the folder", "/in.x/a", "/o.y", Container::Mxf, "/o.y/a.MXF");
    row("percent signs", "/in/take %2.mov", "/100%1", Container::Mxf, "/100%1/take %2.MXF");
    row("blanks and dashes", "/in/-i a .mov", "/o u t", Container::Mxf, "/o u t/-i a .MXF");
    row("unicode", QString::fromUtf8("/in/\u00fcbung.mov"), "/out", Container::Mxf,
        QString::fromUtf8("/out/\u00fcbung.MXF"));
}

void TestOutputName::theOutputIsNamedAfterTheInput()
{
    QFETCH(QString, input);
    QFETCH(QString, folder);
    QFETCH(Container, container);
    QFETCH(QString, expected);
    QCOMPARE(outputname::choose(input, folder, container, [](const QString &) { return false; }), expected);
}

void TestOutputName::takenNamesAreCountedUp_data()
{
    QTest::addColumn<QStringList>("taken");
    QTest::addColumn<QString>("expected");

    row("one", QStringList{"/o/clip.MOV"}, "/o/clip_1.MOV");
    row("three", QStringList{"/o/clip.MOV", "/o/clip_1.MOV", "/o/clip_2.MOV"}, "/o/clip_3.MOV");
    row("a gap is filled", QStringList{"/o/clip.MOV", "/o/clip_2.MOV"}, "/o/clip_1.MOV");
    row("numbers alone take nothing", QStringList{"/o/clip_1.MOV"}, "/o/clip.MOV");
}

void TestOutputName::takenNamesAreCountedUp()
{
    QFETCH(QStringList, taken);
    QFETCH(QString, expected);
    QCOMPARE(outputname::choose("/in/clip.MTS", "/o", Container::QuickTime,
                                [&taken](const QString &path) { return taken.contains(path); }),
             expected);
}

void TestOutputName::theSearchEndsAtTheLastNumber()
{
    QSet<QString> asked;
    const QString chosen =
        outputname::choose("/in/clip.mov", "/o", Container::QuickTime, [&asked](const QString &path) {
            asked += path;
            return true;
        });
    QCOMPARE(chosen, QString("/o/clip_9999.MOV"));
    QVERIFY(asked.contains("/o/clip_9998.MOV"));
}

QTEST_APPLESS_MAIN(TestOutputName)
#include "tst_outputname.moc"
