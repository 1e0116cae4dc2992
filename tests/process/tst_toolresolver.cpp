// SPDX-License-Identifier: MIT
#include "process/toolresolver.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

class TestToolResolver : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void theFirstExecutableFileIsTaken_data();
    void theFirstExecutableFileIsTaken();
    void theSearchPathComesFirst();
    void theApplicationsFolderComesSecond();
    void whatIsNowhereKeepsItsBareName();
    void theWorkingDirectoryIsNotSearched_data();
    void theWorkingDirectoryIsNotSearched();

private:
    QScopedPointer<QTemporaryDir> folder; ///< with the folders "a" and "b"
    QByteArray searchPath;                ///< restored after each test
    QString workingDirectory;             ///< restored after each test
};

namespace
{

void makeFile(const QString &path, bool executable)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    if (executable)
        QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

} // namespace

void TestToolResolver::init()
{
    searchPath = qgetenv("PATH");
    workingDirectory = QDir::currentPath();
    folder.reset(new QTemporaryDir);
    QVERIFY(QDir(folder->path()).mkdir("a") && QDir(folder->path()).mkdir("b"));
}

void TestToolResolver::cleanup()
{
    qputenv("PATH", searchPath);
    QDir::setCurrent(workingDirectory);
}

void TestToolResolver::theFirstExecutableFileIsTaken_data()
{
    QTest::addColumn<QStringList>("executable");
    QTest::addColumn<QStringList>("plainFiles");
    QTest::addColumn<QStringList>("folders");
    QTest::addColumn<QString>("expected");

    QTest::newRow("nowhere") << QStringList() << QStringList() << QStringList() << QString();
    QTest::newRow("in the second folder")
        << QStringList{"b/t.exe"} << QStringList() << QStringList() << "b/t.exe";
    QTest::newRow("in both folders") << QStringList{"a/t.exe", "b/t.exe"} << QStringList() << QStringList()
                                     << "a/t.exe";
    QTest::newRow("a file that cannot be executed")
        << QStringList{"b/t.exe"} << QStringList{"a/t.exe"} << QStringList() << "b/t.exe";
    QTest::newRow("a folder of that name")
        << QStringList{"b/t.exe"} << QStringList() << QStringList{"a/t.exe"} << "b/t.exe";
    QTest::newRow("another ending") << QStringList{"a/t"} << QStringList() << QStringList() << QString();
}

void TestToolResolver::theFirstExecutableFileIsTaken()
{
    QFETCH(QStringList, executable);
    QFETCH(QStringList, plainFiles);
    QFETCH(QStringList, folders);
    QFETCH(QString, expected);

    const QString root = folder->path() + '/';
    for (const QString &name : executable)
        makeFile(root + name, true);
    for (const QString &name : plainFiles)
        makeFile(root + name, false);
    for (const QString &name : folders)
        QVERIFY(QDir(root).mkdir(name));

    QCOMPARE(toolresolver::find("t.exe", {root + "missing", root + "a", root + "b/"}),
             expected.isEmpty() ? QString() : root + expected);
}

void TestToolResolver::theSearchPathComesFirst()
{
    // A file of the name of this very program is in the search path, too.
    const QString own = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
    makeFile(folder->filePath("b/" + own), true);
    qputenv("PATH", QFile::encodeName(folder->filePath("a") + QDir::listSeparator() + folder->filePath("b")));
    QCOMPARE(toolresolver::resolve(own), folder->filePath("b/" + own));
}

void TestToolResolver::theApplicationsFolderComesSecond()
{
    qputenv("PATH", QFile::encodeName(folder->filePath("a")));
    const QFileInfo own(QCoreApplication::applicationFilePath());
    QCOMPARE(toolresolver::resolve(own.fileName()), own.absoluteFilePath());
}

void TestToolResolver::whatIsNowhereKeepsItsBareName()
{
    qputenv("PATH", QFile::encodeName(folder->filePath("a")));
    QCOMPARE(toolresolver::resolve("ffprobe.exe"), QString("ffprobe.exe"));
    qunsetenv("PATH");
    QCOMPARE(toolresolver::resolve("ffprobe.exe"), QString("ffprobe.exe"));
}

void TestToolResolver::theWorkingDirectoryIsNotSearched_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::newRow("as a dot") << QByteArray(".");
    QTest::newRow("as an empty entry") << QByteArray(":/nowhere:");
    QTest::newRow("as its parent") << QByteArray("../a");
}

void TestToolResolver::theWorkingDirectoryIsNotSearched()
{
    QFETCH(QByteArray, path);
    makeFile(folder->filePath("a/t.exe"), true);
    QVERIFY(QDir::setCurrent(folder->filePath("a")));
    qputenv("PATH", path);
    QCOMPARE(toolresolver::resolve("t.exe"), QString("t.exe"));
}

QTEST_GUILESS_MAIN(TestToolResolver)
#include "tst_toolresolver.moc"
