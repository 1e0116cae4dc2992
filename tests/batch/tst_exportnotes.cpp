// SPDX-License-Identifier: MIT
#include "batch/exportnotes.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

class TestExportNotes : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void aNameIsGivenOnce();
    void aNameThatIsDroppedIsFree();
    void whatWasProvenIsFoundAgain();
    void whatHasChangedIsNotFound_data();
    void whatHasChangedIsNotFound();
    void halfDoneFilesAreRemoved();
    void filesOfOthersStay();
    void damagedNotesSayNothing();

private:
    ExportOptions options() const;
    QString out(const QString &name) const { return folder->filePath("out/" + name); }
    FileData makeSource(const QString &name, const QByteArray &content = "source") const;
    static void write(const QString &path, const QByteArray &content);

    std::unique_ptr<QTemporaryDir> folder;
};

void TestExportNotes::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(folder->path()).mkpath("out"));
}

void TestExportNotes::write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
}

ExportOptions TestExportNotes::options() const
{
    ExportOptions options;
    options.exportDir = folder->filePath("out");
    options.videoType = 5;
    options.muteAudioTC = true;
    return options;
}

FileData TestExportNotes::makeSource(const QString &name, const QByteArray &content) const
{
    FileData file;
    file.absoluteFilePath = folder->filePath(name);
    file.audioTC = "10:00:00:00";
    file.hasAudioTC = true;
    write(file.absoluteFilePath, content);
    return file;
}

void TestExportNotes::aNameIsGivenOnce()
{
    const ExportNotes notes(options());
    const FileData file = makeSource("a.mov");
    QVERIFY(notes.claim(file, out("a.MOV")));
    QVERIFY(!notes.claim(file, out("a.MOV")));
    QVERIFY(!ExportNotes(options()).claim(makeSource("b.mov"), out("a.MOV"))); // nor to another run
    QVERIFY(notes.claim(file, out("a_1.MOV")));
}

void TestExportNotes::aNameThatIsDroppedIsFree()
{
    const ExportNotes notes(options());
    const FileData file = makeSource("a.mov");
    QVERIFY(notes.claim(file, out("a.MOV")));
    notes.drop(out("a.MOV"));
    QVERIFY(notes.claim(file, out("a.MOV")));
}

void TestExportNotes::whatWasProvenIsFoundAgain()
{
    const FileData file = makeSource("a.mov");
    QVERIFY(!ExportNotes(options()).verifiedExport(file));
    {
        const ExportNotes notes(options());
        QVERIFY(notes.claim(file, out("a.MOV")));
        write(out("a.MOV"), "export");
        QVERIFY(!notes.verifiedExport(file)); // not yet
        notes.setVerified(file, out("a.MOV"), "10:00:00:00");
    }
    const auto done = ExportNotes(options()).verifiedExport(file);
    QVERIFY(done);
    QCOMPARE(done->path, out("a.MOV"));
    QCOMPARE(done->start, QString("10:00:00:00"));
}

void TestExportNotes::whatHasChangedIsNotFound_data()
{
    QTest::addColumn<int>("which");
    QTest::newRow("the source's size") << 0;
    QTest::newRow("the source's time") << 1;
    QTest::newRow("the timecode") << 2;
    QTest::newRow("the picture's type") << 3;
    QTest::newRow("the sound's type") << 4;
    QTest::newRow("the timecode channel") << 5;
    QTest::newRow("the new file's size") << 6;
    QTest::newRow("the new file is gone") << 7;
    QTest::newRow("it was another source") << 8;
}

void TestExportNotes::whatHasChangedIsNotFound()
{
    QFETCH(int, which);
    FileData file = makeSource("a.mov");
    ExportOptions changed = options();
    const ExportNotes notes(options());
    QVERIFY(notes.claim(file, out("a.MOV")));
    write(out("a.MOV"), "export");
    notes.setVerified(file, out("a.MOV"), "10:00:00:00");
    QVERIFY(notes.verifiedExport(file));
    switch (which) {
    case 0:
        write(file.absoluteFilePath, "longer source");
        break;
    case 1: {
        QFile source(file.absoluteFilePath);
        QVERIFY(source.open(QIODevice::ReadWrite));
        QVERIFY(
            source.setFileTime(QDateTime(QDate(2020, 1, 1), QTime(1, 0)), QFileDevice::FileModificationTime));
        break;
    }
    case 2:
        file.audioTC = "10:00:00:01";
        break;
    case 3:
        changed.videoType = 6;
        break;
    case 4:
        changed.audioType = 2;
        break;
    case 5:
        changed.muteAudioTC = false;
        break;
    case 6:
        write(out("a.MOV"), "half");
        break;
    case 7:
        QVERIFY(QFile::remove(out("a.MOV")));
        break;
    default:
        file = makeSource("b.mov");
    }
    QVERIFY(!ExportNotes(changed).verifiedExport(file));
}

void TestExportNotes::halfDoneFilesAreRemoved()
{
    const ExportNotes notes(options());
    const FileData file = makeSource("a.mov");
    QVERIFY(notes.claim(file, out("a.MOV")));
    write(out("a.MOV"), "ha");
    notes.removeHalfDone(file);
    QVERIFY(!QFile::exists(out("a.MOV")));
    QVERIFY(notes.claim(file, out("a.MOV")));
}

void TestExportNotes::filesOfOthersStay()
{
    const ExportNotes notes(options());
    const FileData file = makeSource("a.mov");
    const FileData other = makeSource("b.mov");
    QVERIFY(notes.claim(file, out("a.MOV")));
    write(out("a.MOV"), "export");
    notes.setVerified(file, out("a.MOV"), {});
    QVERIFY(notes.claim(other, out("b.MOV")));
    write(out("b.MOV"), "under way");
    notes.removeHalfDone(file);
    QVERIFY(QFile::exists(out("a.MOV")) && QFile::exists(out("b.MOV")));
}

void TestExportNotes::damagedNotesSayNothing()
{
    const ExportNotes notes(options());
    const FileData file = makeSource("a.mov");
    QVERIFY(notes.claim(file, out("a.MOV")));
    write(options().exportDir + "/.ostrel-batch/a.MOV.json", "{\"export\": \"a.M");
    write(out("a.MOV"), "ha");
    notes.removeHalfDone(file);
    QVERIFY(QFile::exists(out("a.MOV"))); // whose it is, is not known
    QVERIFY(!notes.verifiedExport(file));
    QVERIFY(!notes.claim(file, out("a.MOV")));
}

QTEST_APPLESS_MAIN(TestExportNotes)
#include "tst_exportnotes.moc"
