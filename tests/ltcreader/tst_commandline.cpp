// SPDX-License-Identifier: MIT
#include "ltcreader/commandline.h"

#include <QStringList>
#include <QTest>

using namespace ltcreader;

class TestCommandLine : public QObject
{
    Q_OBJECT

private slots:
    void wrongArgumentsHaveTheirCode_data();
    void wrongArgumentsHaveTheirCode();
    void switchesAreUnderstood_data();
    void switchesAreUnderstood();
    void nothingIsChosenByDefault();
    void helpAndVersionNeedNoFile();
};

namespace
{

Command parse(const QStringList &arguments)
{
    std::vector<std::string> list;
    for (const QString &argument : arguments) {
        list.push_back(argument.toStdString());
    }
    return parseCommandLine(list, [](const std::string &path) { return path == "-take.wav"; });
}

} // namespace

void TestCommandLine::wrongArgumentsHaveTheirCode_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("code");
    QTest::newRow("nothing at all") << QStringList{} << 100;
    QTest::newRow("only switches") << QStringList{"-c0"} << 100;
    QTest::newRow("unknown output format") << QStringList{"a.wav", "-oXML"} << 101;
    QTest::newRow("empty output format") << QStringList{"a.wav", "-o"} << 101;
    QTest::newRow("unknown switch") << QStringList{"a.wav", "-x"} << 102;
    QTest::newRow("unknown long switch") << QStringList{"a.wav", "--verbose"} << 102;
    QTest::newRow("a lone dash") << QStringList{"a.wav", "-"} << 102;
    QTest::newRow("unknown switch in the place of the file") << QStringList{"-x"} << 102;
    QTest::newRow("two files") << QStringList{"a.wav", "b.wav"} << 102;
    QTest::newRow("channel that is no number") << QStringList{"a.wav", "-cleft"} << 102;
    QTest::newRow("channel without a number") << QStringList{"a.wav", "-c"} << 102;
    QTest::newRow("channel below 0") << QStringList{"a.wav", "-c-2"} << 202;
    QTest::newRow("unknown algorithm") << QStringList{"a.wav", "-aBEST"} << 103;
    QTest::newRow("empty algorithm") << QStringList{"a.wav", "-a"} << 103;
    QTest::newRow("50 frames per second") << QStringList{"a.wav", "-f50"} << 203;
    QTest::newRow("a rate with a comma") << QStringList{"a.wav", "-f29,97"} << 203;
    QTest::newRow("a rate of nothing") << QStringList{"a.wav", "-f"} << 203;
    QTest::newRow("not a number as rate") << QStringList{"a.wav", "-fnan"} << 203;
    QTest::newRow("a negative rate") << QStringList{"a.wav", "-f-1"} << 203;
}

void TestCommandLine::wrongArgumentsHaveTheirCode()
{
    QFETCH(QStringList, arguments);
    const Command command = parse(arguments);
    const auto *refusal = std::get_if<Refusal>(&command);
    QVERIFY(refusal);
    QTEST(static_cast<int>(refusal->code), "code");
    QVERIFY(!refusal->reason.empty() && refusal->reason.find('\n') == std::string::npos);
}

void TestCommandLine::switchesAreUnderstood_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("channel");
    QTest::addColumn<double>("frameRate");
    QTest::addColumn<int>("algorithm");
    QTest::addColumn<QString>("path");
    QTest::newRow("what the application passes")
        << QStringList{"/t/a_1.wav", "-c3", "-f29.97", "-aMID"} << 3 << 29.97 << 2 << "/t/a_1.wav";
    QTest::newRow("first channel") << QStringList{"a.wav", "-c0"} << 0 << -1.0 << 0 << "a.wav";
    QTest::newRow("23.98") << QStringList{"a.wav", "-f23.98"} << -1 << 23.98 << 0 << "a.wav";
    QTest::newRow("23.976") << QStringList{"a.wav", "-f23.976"} << -1 << 23.976 << 0 << "a.wav";
    QTest::newRow("24") << QStringList{"a.wav", "-f24"} << -1 << 24.0 << 0 << "a.wav";
    QTest::newRow("30.00") << QStringList{"a.wav", "-f30.00"} << -1 << 30.0 << 0 << "a.wav";
    QTest::newRow("LOW") << QStringList{"a.wav", "-aLOW"} << -1 << -1.0 << 1 << "a.wav";
    QTest::newRow("HIGH") << QStringList{"a.wav", "-aHIGH"} << -1 << -1.0 << 3 << "a.wav";
    QTest::newRow("SLOPE before the file") << QStringList{"-aSLOPE", "a.wav"} << -1 << -1.0 << 4 << "a.wav";
    QTest::newRow("an existing file that begins with a dash")
        << QStringList{"-take.wav", "-c1"} << 1 << -1.0 << 0 << "-take.wav";
    QTest::newRow("after a double dash") << QStringList{"-c1", "--", "-c2"} << 1 << -1.0 << 0 << "-c2";
}

void TestCommandLine::switchesAreUnderstood()
{
    QFETCH(QStringList, arguments);
    const Command command = parse(arguments);
    const auto *run = std::get_if<Run>(&command);
    QVERIFY(run);
    QTEST(run->settings.channel, "channel");
    QTEST(run->settings.frameRate, "frameRate");
    QTEST(static_cast<int>(run->settings.algorithm), "algorithm");
    QTEST(QString::fromStdString(run->path), "path");
}

void TestCommandLine::nothingIsChosenByDefault()
{
    const Command command = parse({"a.wav"});
    const auto *run = std::get_if<Run>(&command);
    QVERIFY(run);
    QCOMPARE(run->settings.channel, -1);
    QCOMPARE(run->settings.frameRate, -1.0);
    QVERIFY(run->settings.algorithm == Algorithm::Automatic);
    QVERIFY(run->format == OutputFormat::Json);
    const Command people = parse({"a.wav", "-oTEXT"});
    QVERIFY(std::get<Run>(people).format == OutputFormat::Text);
}

void TestCommandLine::helpAndVersionNeedNoFile()
{
    QVERIFY(std::get<Question>(parse({"--help"})) == Question::Help);
    QVERIFY(std::get<Question>(parse({"a.wav", "-h"})) == Question::Help);
    QVERIFY(std::get<Question>(parse({"--version"})) == Question::Version);
}

QTEST_APPLESS_MAIN(TestCommandLine)
#include "tst_commandline.moc"
