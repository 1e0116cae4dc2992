// SPDX-License-Identifier: MIT
#include "control/droppedfiles.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <filesystem>
#include <fstream>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

class TestDroppedFiles : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void singleFilesAreToldByTheirEnding_data();
    void singleFilesAreToldByTheirEnding();
    void foldersAreWalkedWithTheirSubFolders();
    void theOrderIsThatOfTheFolders();
    void aFolderNamedLikeAFileIsWalked();
    void linksToFoldersAreNotFollowed();
    void namesThatAreNoTextAreFound();
    void onlyFilesAreFound();
    void whatIsNotThereIsPassedOver();
    void everyStepLooksAtOneEntry();
    void laterDropsFollowEarlierOnes();

private:
    void make(const QString &name);
    QStringList found(const QStringList &names);

    std::unique_ptr<QTemporaryDir> folder;
};

void TestDroppedFiles::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
}

void TestDroppedFiles::make(const QString &name)
{
    const QFileInfo info(folder->filePath(name));
    QVERIFY(QDir().mkpath(info.path()));
    QVERIFY(QFile(info.filePath()).open(QIODevice::WriteOnly));
}

/// Names, relative to the test's folder, of what a drop of \a names yields.
QStringList TestDroppedFiles::found(const QStringList &names)
{
    QList<QUrl> urls;
    for (const QString &name : names)
        urls += QUrl::fromLocalFile(folder->filePath(name));
    DroppedFiles dropped;
    dropped.add(urls);
    QStringList result;
    while (!dropped.atEnd()) {
        if (const auto file = dropped.step())
            result += QDir(folder->path()).relativeFilePath(file->filePath());
    }
    return result;
}

void TestDroppedFiles::singleFilesAreToldByTheirEnding_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isMedia");
    QTest::newRow("capitals") << "clip.MXF" << true;
    QTest::newRow("mov") << "clip.mov" << true;
    QTest::newRow("mp4") << "clip.Mp4" << true;
    QTest::newRow("mts") << "00001.MTS" << true;
    QTest::newRow("wav") << "notes.wav" << true;
    QTest::newRow("another suffix behind it") << "clip.mxf.bak" << false;
    QTest::newRow("another suffix") << "clip.avi" << false;
    QTest::newRow("the dot is not needed") << "clipmov" << true;
    QTest::newRow("hidden") << ".mov" << true;
    QTest::newRow("percent sign and blank") << "take %2 .mov" << true;
}

void TestDroppedFiles::singleFilesAreToldByTheirEnding()
{
    QFETCH(QString, name);
    QFETCH(bool, isMedia);
    make(name);
    QCOMPARE(found({name}), isMedia ? QStringList{name} : QStringList());
    QCOMPARE(found({"missing-" + name}).size(),
             isMedia ? 1 : 0); // whether it is there, is the probe's to say
}

void TestDroppedFiles::foldersAreWalkedWithTheirSubFolders()
{
    make("day/card/A.MOV");
    make("day/card/b.txt");
    make("day/card/deep/er/c.wav");
    make("day/cardmov");     // in a folder, the dot is needed
    make("day/.hidden.mov"); // not shown, not taken
    make("day/.trash/d.mov");
    QStringList result = found({"day"});
    result.sort();
    QCOMPARE(result, (QStringList{"day/card/A.MOV", "day/card/deep/er/c.wav"}));
}

void TestDroppedFiles::theOrderIsThatOfTheFolders()
{
    for (int i = 0; i < 50; ++i)
        make(QString("day/%1/clip%2.mov").arg(i % 7).arg(i));
    QStringList expected;
    QDirIterator iterator(folder->filePath("day"), mediaNameFilters, QDir::Files,
                          QDirIterator::Subdirectories);
    while (iterator.hasNext())
        expected += QDir(folder->path()).relativeFilePath(iterator.next());
    QCOMPARE(expected.size(), 50);
    QCOMPARE(found({"day"}), expected);
}

void TestDroppedFiles::aFolderNamedLikeAFileIsWalked()
{
    make("clip.mov/inner.mov/A001.mxf");
    QCOMPARE(found({"clip.mov"}), QStringList{"clip.mov/inner.mov/A001.mxf"});
}

void TestDroppedFiles::linksToFoldersAreNotFollowed()
{
    make("day/a.mov");
    QVERIFY(QFile::link(folder->filePath("day"), folder->filePath("day/loop")));
    QVERIFY(QFile::link(folder->filePath("day"), folder->filePath("day/loop.mov")));
    QVERIFY(QFile::link(folder->filePath("nowhere"), folder->filePath("day/broken.mov")));
    QVERIFY(QFile::link(folder->filePath("day/a.mov"), folder->filePath("day/b.mov")));
    QStringList result = found({"day"});
    result.sort();
    QCOMPARE(result, (QStringList{"day/a.mov", "day/b.mov"}));
}

void TestDroppedFiles::namesThatAreNoTextAreFound()
{
#ifndef Q_OS_UNIX
    QSKIP("every name is text here");
#endif
    make("day/good.mov");
    const QByteArray day = QFile::encodeName(folder->filePath("day/"));
    std::filesystem::create_directory((day + "card\xFE").constData());
    for (const char *name : {"take\xFF.mov", "Caf\xE9.WAV", "\xFF.txt", ".\xFF.mov", "card\xFE/inner.mxf"})
        QVERIFY(std::ofstream((day + name).constData()));
    QStringList result = found({"day"});
    result.sort();
    const QChar replaced(QChar::ReplacementCharacter);
    QStringList expected{"day/good.mov", QString("day/take%1.mov").arg(replaced),
                         QString("day/Caf%1.WAV").arg(replaced),
                         QString("day/card%1/inner.mxf").arg(replaced)};
    expected.sort();
    QCOMPARE(result, expected);
    std::filesystem::remove_all(day.constData()); // the toolkit could not
}

void TestDroppedFiles::onlyFilesAreFound()
{
#ifdef Q_OS_UNIX
    make("day/a.mov");
    const QByteArray pipe = QFile::encodeName(folder->filePath("day/pipe.mov"));
    QCOMPARE(mkfifo(pipe.constData(), S_IRWXU), 0);
    QCOMPARE(found({"day"}), QStringList{"day/a.mov"});
#else
    QSKIP("there are no pipes in folders here");
#endif
}

void TestDroppedFiles::whatIsNotThereIsPassedOver()
{
    DroppedFiles dropped;
    QVERIFY(dropped.atEnd());
    dropped.add({QUrl(), QUrl("http://example.invalid/clip.html"), QUrl::fromLocalFile("/nowhere/at/all")});
    int steps = 0;
    for (; !dropped.atEnd(); ++steps)
        QVERIFY(!dropped.step());
    QCOMPARE(steps, 3);
    QVERIFY(QDir(folder->path()).mkdir("empty"));
    QCOMPARE(found({"empty"}), QStringList());
}

void TestDroppedFiles::everyStepLooksAtOneEntry()
{
    for (int i = 0; i < 20; ++i)
        make(QString("day/foreign%1.txt").arg(i));
    for (int i = 0; i < 20; ++i)
        QVERIFY(QDir(folder->path()).mkpath(QString("day/folder%1").arg(i)));
    DroppedFiles dropped;
    dropped.add({QUrl::fromLocalFile(folder->filePath("day"))});
    int steps = 0;
    for (; !dropped.atEnd(); ++steps)
        QVERIFY(!dropped.step());
    QCOMPARE(steps, 1 + 20 + 20);
}

void TestDroppedFiles::laterDropsFollowEarlierOnes()
{
    make("one/a.mov");
    make("b.mov");
    DroppedFiles dropped;
    dropped.add({QUrl::fromLocalFile(folder->filePath("one"))});
    QVERIFY(!dropped.step());
    dropped.add({QUrl::fromLocalFile(folder->filePath("b.mov"))});
    QStringList names;
    while (!dropped.atEnd()) {
        if (const auto file = dropped.step())
            names += file->fileName();
    }
    QCOMPARE(names, (QStringList{"a.mov", "b.mov"}));
}

QTEST_APPLESS_MAIN(TestDroppedFiles)
#include "tst_droppedfiles.moc"
