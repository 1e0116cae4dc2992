// SPDX-License-Identifier: MIT
#include "tooladapter/posix/toolsearch.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

class TestToolSearch : public QObject
{
    Q_OBJECT

private slots:
    void theCalledNameTellsTheTool_data();
    void theCalledNameTellsTheTool();
    void theFirstExecutableInTheSearchPathIsTaken();
    void theAdapterNeverFindsItself_data();
    void theAdapterNeverFindsItself();
    void relativeAndEmptyFoldersAreSkipped();
    void nothingFoundIsAnEmptyText();

private:
    QString makeFile(const QTemporaryDir &root, const QString &name, bool executable = true);
    static std::string find(const QStringList &folders, const QString &ownPath);
};

QString TestToolSearch::makeFile(const QTemporaryDir &root, const QString &name, bool executable)
{
    QString path = root.filePath(name);
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(path));
    file.setPermissions(executable ? QFile::ReadOwner | QFile::ExeOwner : QFile::ReadOwner);
    return path;
}

std::string TestToolSearch::find(const QStringList &folders, const QString &ownPath)
{
    return tooladapter::findTool("ffmpeg", folders.join(':').toStdString(), ownPath.toStdString());
}

void TestToolSearch::theCalledNameTellsTheTool_data()
{
    QTest::addColumn<QByteArray>("called");
    QTest::addColumn<QByteArray>("tool");
    QTest::newRow("bare name") << QByteArray("ffmpeg.exe") << QByteArray("ffmpeg");
    QTest::newRow("full path") << QByteArray("/opt/x.y/ffprobe.exe") << QByteArray("ffprobe");
    QTest::newRow("capitals") << QByteArray("FFmpeg.EXE") << QByteArray("ffmpeg");
    QTest::newRow("link without suffix") << QByteArray("/usr/local/bin/ffprobe") << QByteArray("ffprobe");
}

void TestToolSearch::theCalledNameTellsTheTool()
{
    QFETCH(QByteArray, called);
    QFETCH(QByteArray, tool);
    QCOMPARE(QByteArray::fromStdString(tooladapter::toolNameOf(called.toStdString())), tool);
}

void TestToolSearch::theFirstExecutableInTheSearchPathIsTaken()
{
    const QTemporaryDir root;
    makeFile(root, "a/ffmpeg", false);
    QVERIFY(QDir().mkpath(root.filePath("b/ffmpeg")));
    makeFile(root, "c/ffmpeg.exe");
    const QString expected = makeFile(root, "d/ffmpeg");
    makeFile(root, "e/ffmpeg");
    const QStringList folders{root.filePath("a"), root.filePath("b"), root.filePath("c"), root.filePath("d"),
                              root.filePath("e")};
    QCOMPARE(QString::fromStdString(find(folders, root.filePath("own"))), expected);
}

void TestToolSearch::theAdapterNeverFindsItself_data()
{
    QTest::addColumn<bool>("symbolic");
    QTest::newRow("through a hard link") << false;
    QTest::newRow("through a symbolic link") << true;
}

void TestToolSearch::theAdapterNeverFindsItself()
{
    QFETCH(bool, symbolic);
    const QTemporaryDir root;
    const QString own = makeFile(root, "own/ffmpeg.exe");
    QVERIFY(QDir().mkpath(root.filePath("links")));
    const QByteArray link = QFile::encodeName(root.filePath("links/ffmpeg"));
    const std::string target = own.toStdString();
    if (symbolic)
        QVERIFY(QFile::link(own, QFile::decodeName(link)));
    else
        QCOMPARE(::link(target.c_str(), link.constData()), 0);
    const QString real = makeFile(root, "real/ffmpeg");
    QCOMPARE(QString::fromStdString(find({root.filePath("links"), root.filePath("real")}, own)), real);
}

void TestToolSearch::relativeAndEmptyFoldersAreSkipped()
{
    const QTemporaryDir root;
    makeFile(root, "ffmpeg");
    makeFile(root, "sub/ffmpeg");
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(root.path()));
    const std::string found = find({"", ".", "sub"}, root.filePath("own"));
    QVERIFY(QDir::setCurrent(before));
    QCOMPARE(QString::fromStdString(found), QString());
}

void TestToolSearch::nothingFoundIsAnEmptyText()
{
    const QTemporaryDir root;
    QCOMPARE(QString::fromStdString(find({root.path(), root.filePath("missing")}, root.filePath("own"))),
             QString());
    QCOMPARE(QString::fromStdString(find({}, root.filePath("own"))), QString());
}

QTEST_APPLESS_MAIN(TestToolSearch)
#include "tst_toolsearch.moc"
