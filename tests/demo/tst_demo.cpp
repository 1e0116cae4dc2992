// SPDX-License-Identifier: MIT
#include "testkit/fixtures/toolrun.h"

#include <QtTest>

/// The demo as people start it, on the offscreen platform.
class TestDemo : public QObject
{
    Q_OBJECT

private slots:
    void mainJobComesOutRight();
    void timecodeThatIsOneFrameOffIsNoticed();
    void helpIsPrinted();
    void callWithoutFolderFails();
    void foreignFolderIsRefusedAndKept();
};

namespace
{

ToolRun runDemo(const QStringList &arguments, const QString &firstToolFolder = {})
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (!firstToolFolder.isEmpty())
        environment.insert("PATH", firstToolFolder + QDir::listSeparator() + environment.value("PATH"));
    return runTool(DEMO, arguments, environment);
}

bool write(const QString &path)
{
    return QFile(path).open(QIODevice::WriteOnly);
}

// The lines of the table that are judged wrong.
QStringList wrongLines(const QString &output)
{
    return output.split('\n').filter("WRONG");
}

} // namespace

// An earlier run left a file in the folder, which is replaced.
void TestDemo::mainJobComesOutRight()
{
    const QTemporaryDir folder;
    const QString earlier = folder.filePath("exported/old.MOV");
    QVERIFY(QDir(folder.path()).mkdir("exported"));
    QVERIFY(write(earlier) && write(folder.filePath(".made-by-ostrel-demo")));
    const ToolRun run = runDemo({folder.path()});
    QVERIFY2(run.exitCode == 0, (run.output + run.errors).constData());
    QCOMPARE(wrongLines(run.output), QStringList());
    const QStringList lines = QString(run.output).split('\n');
    const QStringList right = lines.filter("right to the "); // in one column
    for (const QString &line : right)
        QCOMPARE(line.indexOf("right to the "), lines.filter("Verdict").first().indexOf("Verdict"));
    QCOMPARE(run.output.count("right to the frame"), 10);
    QCOMPARE(run.output.count("right to the sample"), 3);
    const QStringList screenshots = QDir(folder.filePath("screenshots")).entryList({"*.png"});
    QVERIFY(!QFile::exists(earlier));
    for (const char *name : {"1-before", "3-imported", "4-export-dialog", "6-export-result", "7-after"})
        QVERIFY2(screenshots.contains(QString(name) + ".png"), name);
}

void TestDemo::timecodeThatIsOneFrameOffIsNoticed()
{
    const QTemporaryDir folder;
    const ToolRun run = runDemo({folder.path()}, WRONG_READER_FOLDER);
    QCOMPARE(run.exitCode, 1);
    const QStringList wrong = wrongLines(run.output);
    QCOMPARE(wrong.size(), 1);
    QVERIFY(wrong.first().contains("10:11:12:14"));
    QVERIFY(wrong.first().contains("should start at 10:11:12:13"));
}

void TestDemo::helpIsPrinted()
{
    const ToolRun run = runDemo({"--help"});
    QCOMPARE(run.exitCode, 0);
    QVERIFY(run.output.contains("folder"));
}

void TestDemo::callWithoutFolderFails()
{
    const ToolRun run = runDemo({});
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.errors, QByteArray("ostrel-demo: give one folder; see --help\n"));
}

void TestDemo::foreignFolderIsRefusedAndKept()
{
    const QTemporaryDir folder;
    QVERIFY(write(folder.filePath("original.mov")));
    const ToolRun run = runDemo({folder.path()});
    QCOMPARE(run.exitCode, 1);
    QVERIFY(run.errors.contains("holds files that no demo made"));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList{"original.mov"});
}

QTEST_APPLESS_MAIN(TestDemo)
#include "tst_demo.moc"
