// SPDX-License-Identifier: MIT
#include "control/temporaryfolder.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace
{

void write(const QString &path)
{
    QVERIFY(QFile(path).open(QIODevice::WriteOnly));
}

/// Writes the lock file of an instance that has ended without removing it.
void writeDeadLock(const QString &path)
{
    QProcess dead;
    dead.start("true", {});
    QVERIFY(dead.waitForStarted());
    const QByteArray processId = QByteArray::number(dead.processId());
    QVERIFY(dead.waitForFinished());
    QFile lock(path);
    QVERIFY(lock.open(QIODevice::WriteOnly));
    lock.write(processId + "\nostrel-timecode-tool\n" + QSysInfo::machineHostName().toUtf8() + '\n');
}

} // namespace

class TestTemporaryFolder : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void itIsAFolderOfTheSystemsTemporaryFolder();
    void subFoldersBearTheBaseName();
    void onlyThisUserMayLookInside();
    void leftOversOfAnEarlierRunAreRemoved();
    void removingTakesAllContents();
    void removingSparesWhatLinksPointTo();
    void aSecondInstanceTakesAnotherName();
    void theNameIsFreeAgainAfterTheFirstInstance();
    void aLockOfADeadInstanceDoesNotCount();
    void whatADeadInstanceHasLeftIsRemoved();
    void whatHasAnotherNameIsLeftAlone_data();
    void whatHasAnotherNameIsLeftAlone();
    void releasingTwiceSparesTheNextOwner();
    void aLinkOfTheNameIsNeitherUsedNorFollowed();
    void aLinkThatAppearsLaterIsNotUsed();
    void aFileOfTheNameIsLeftAlone();
    void theFolderOfAnotherUserIsLeftAlone();
    void withoutAPlaceNothingIsMade();

private:
    QString mainPath() const { return parent->filePath("OstrelSyncTemp"); }
    QString privatePath() const
    {
        return mainPath() + '-' + QString::number(QCoreApplication::applicationPid());
    }

    std::unique_ptr<QTemporaryDir> parent;
};

void TestTemporaryFolder::init()
{
    parent = std::make_unique<QTemporaryDir>();
    QVERIFY(parent->isValid());
}

void TestTemporaryFolder::itIsAFolderOfTheSystemsTemporaryFolder()
{
    qputenv("TMPDIR", QFile::encodeName(parent->path()));
    const TemporaryFolder folder;
    qunsetenv("TMPDIR");
    QCOMPARE(folder.path(), QDir::toNativeSeparators(parent->path()) + QDir::separator() + "OstrelSyncTemp");
    QVERIFY(!QFileInfo::exists(folder.path())); // made only when it is needed
}

void TestTemporaryFolder::subFoldersBearTheBaseName()
{
    TemporaryFolder folder(parent->path());
    for (const char *name : {"clip", "take %2", "A 001", "", "\"quoted\"", "-dash"}) {
        const QString path = folder.createSubFolder(name);
        QCOMPARE(path, folder.path() + QDir::separator() + name);
        QCOMPARE(path, folder.subFolder(name));
        QVERIFY(QFileInfo(path).isDir());
        QCOMPARE(folder.createSubFolder(name), path); // shared by files of one base name
    }
}

void TestTemporaryFolder::onlyThisUserMayLookInside()
{
#ifndef Q_OS_UNIX
    QSKIP("folders have no modes here");
#endif
    TemporaryFolder folder(parent->path());
    folder.createSubFolder("clip");
    const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther |
                        QFile::WriteOther | QFile::ExeOther;
    QVERIFY(!(QFileInfo(folder.path()).permissions() & others));
}

void TestTemporaryFolder::leftOversOfAnEarlierRunAreRemoved()
{
    QVERIFY(QDir().mkpath(mainPath() + "/clip"));
    write(mainPath() + "/clip/clip_1_7.wav");
    const TemporaryFolder folder(parent->path());
    QCOMPARE(folder.path(), mainPath());
    QVERIFY(!QFileInfo::exists(mainPath()));
}

void TestTemporaryFolder::removingTakesAllContents()
{
    TemporaryFolder folder(parent->path());
    write(folder.createSubFolder("clip") + "/clip_1_7.wav");
    write(folder.createSubFolder("clip") + "/.hidden");
    QVERIFY(QDir().mkpath(folder.subFolder("clip") + "/deep/er"));
    folder.remove();
    QVERIFY(!QFileInfo::exists(folder.path()));
    folder.remove(); // nothing is there any more
    QVERIFY(QFileInfo(folder.createSubFolder("clip")).isDir());
}

void TestTemporaryFolder::removingSparesWhatLinksPointTo()
{
    QVERIFY(QDir().mkpath(parent->filePath("originals")));
    const QString original = parent->filePath("originals/A001.mov");
    write(original);
    TemporaryFolder folder(parent->path());
    const QString path = folder.createSubFolder("clip");
    QVERIFY(QFile::link(parent->filePath("originals"), path + "/link"));
    QVERIFY(QFile::link(parent->filePath("originals"), folder.path() + "/link"));
    QVERIFY(QFile::link(original, path + "/file"));
    folder.remove();
    QVERIFY(!QFileInfo::exists(folder.path()));
    QVERIFY(QFileInfo::exists(original));

    QVERIFY(QFile::link(parent->filePath("originals"), folder.path()));
    folder.remove();
    QVERIFY(!QFileInfo(folder.path()).isSymLink());
    QVERIFY(QFileInfo::exists(original));
}

void TestTemporaryFolder::aSecondInstanceTakesAnotherName()
{
    TemporaryFolder first(parent->path());
    write(first.createSubFolder("clip") + "/clip_1_7.wav");
    TemporaryFolder second(parent->path());
    QCOMPARE(first.path(), mainPath());
    QCOMPARE(second.path(), privatePath());
    second.createSubFolder("clip");
    second.remove();
    QVERIFY(QFileInfo::exists(first.subFolder("clip") + "/clip_1_7.wav"));
}

void TestTemporaryFolder::theNameIsFreeAgainAfterTheFirstInstance()
{
    {
        TemporaryFolder first(parent->path());
        first.createSubFolder("clip");
        first.release();
        QVERIFY(!QFileInfo::exists(mainPath()));
        QCOMPARE(TemporaryFolder(parent->path()).path(), mainPath());
    }
    QCOMPARE(TemporaryFolder(parent->path()).path(), mainPath());
    QCOMPARE(QDir(parent->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList());
}

void TestTemporaryFolder::aLockOfADeadInstanceDoesNotCount()
{
    writeDeadLock(mainPath() + ".lock");
    QCOMPARE(TemporaryFolder(parent->path()).path(), mainPath());
}

void TestTemporaryFolder::whatADeadInstanceHasLeftIsRemoved()
{
    TemporaryFolder first(parent->path());
    TemporaryFolder second(parent->path());
    second.createSubFolder("clip");
    QVERIFY(QDir().mkpath(mainPath() + "-1/clip")); // no process has its lock
    writeDeadLock(mainPath() + "-2.lock");
    QVERIFY(QDir().mkpath(parent->filePath("Other-1")));
    const TemporaryFolder third(parent->path());
    QCOMPARE(third.path(), privatePath() + '-'); // the second one has the process id's name here
    QVERIFY(!QFileInfo::exists(mainPath() + "-1"));
    QVERIFY(!QFileInfo::exists(mainPath() + "-1.lock"));
    QVERIFY(!QFileInfo::exists(mainPath() + "-2.lock"));
    QVERIFY(QFileInfo::exists(second.subFolder("clip")));
    QVERIFY(QFileInfo::exists(parent->filePath("Other-1")));
}

void TestTemporaryFolder::whatHasAnotherNameIsLeftAlone_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"-backup", "-1 copy", "-1.5", "-", "--", "-0", "-01", "-1-backup", "-+1",
                             "-1-old", "-99999999999999999999", "2", ".old", "-1------------"})
        QTest::newRow(name) << QString("OstrelSyncTemp") + name;
}

void TestTemporaryFolder::whatHasAnotherNameIsLeftAlone()
{
    QFETCH(QString, name);
    const QString path = parent->filePath(name);
    QVERIFY(QDir().mkpath(path + "/clip"));
    writeDeadLock(path + ".lock");
    const TemporaryFolder first(parent->path());
    const TemporaryFolder second(parent->path());
    QVERIFY(QFileInfo::exists(path + "/clip"));
    QVERIFY(QFileInfo::exists(path + ".lock"));
}

void TestTemporaryFolder::releasingTwiceSparesTheNextOwner()
{
    TemporaryFolder first(parent->path());
    first.release();
    TemporaryFolder second(parent->path());
    QCOMPARE(second.path(), first.path());
    const QString folder = second.createSubFolder("clip");
    first.release();
    QVERIFY(QFileInfo::exists(folder));
    first.remove();
    QVERIFY(QFileInfo::exists(folder));
}

void TestTemporaryFolder::aLinkOfTheNameIsNeitherUsedNorFollowed()
{
    QVERIFY(QDir().mkpath(parent->filePath("originals")));
    const QString original = parent->filePath("originals/A001.mov");
    write(original);
    QVERIFY(QFile::link(parent->filePath("originals"), mainPath()));
    QVERIFY(QFile::link(parent->filePath("originals"), privatePath())); // guessed
    {
        TemporaryFolder folder(parent->path());
        QCOMPARE(folder.path(), privatePath() + '-');
        folder.createSubFolder("clip");
    }
    QCOMPARE(QDir(parent->filePath("originals")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList{"A001.mov"});
    QVERIFY(QFileInfo(mainPath()).isSymLink());
}

void TestTemporaryFolder::aLinkThatAppearsLaterIsNotUsed()
{
    TemporaryFolder folder(parent->path());
    QCOMPARE(folder.path(), mainPath());
    QVERIFY(QDir().mkpath(parent->filePath("elsewhere")));
    QVERIFY(QFile::link(parent->filePath("elsewhere"), mainPath()));
    QCOMPARE(folder.createSubFolder("clip"), privatePath() + QDir::separator() + "clip");
    QVERIFY(QDir(parent->filePath("elsewhere")).isEmpty());
}

void TestTemporaryFolder::aFileOfTheNameIsLeftAlone()
{
    write(mainPath());
    const TemporaryFolder folder(parent->path());
    QCOMPARE(folder.path(), privatePath());
    QVERIFY(QFileInfo(mainPath()).isFile());
}

void TestTemporaryFolder::theFolderOfAnotherUserIsLeftAlone()
{
#ifdef Q_OS_UNIX
    if (geteuid() != 0)
        QSKIP("only root can give a folder to another user");
    QVERIFY(QDir().mkpath(mainPath() + "/theirs"));
    constexpr uid_t nobody = 65534;
    QCOMPARE(chown(QFile::encodeName(mainPath()).constData(), nobody, nobody), 0);
    const TemporaryFolder folder(parent->path());
    QCOMPARE(folder.path(), privatePath());
    QVERIFY(QFileInfo::exists(mainPath() + "/theirs"));
#else
    QSKIP("folders have no owners here");
#endif
}

void TestTemporaryFolder::withoutAPlaceNothingIsMade()
{
    TemporaryFolder folder(parent->filePath("nowhere"));
    const QString path = folder.createSubFolder("clip");
    QVERIFY(!QFileInfo::exists(path));
    folder.remove();
    QVERIFY(!QFileInfo::exists(parent->filePath("nowhere")));
}

QTEST_GUILESS_MAIN(TestTemporaryFolder)
#include "tst_temporaryfolder.moc"
