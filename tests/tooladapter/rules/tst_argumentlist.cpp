// SPDX-License-Identifier: MIT
#include "testkit/fixtures/row.h"
#include "tests/tooladapter/rules/words.h"
#include "tooladapter/rules/argumentlist.h"

#include <QTest>

using tooladapter::Job;

Q_DECLARE_METATYPE(tooladapter::Job)

class TestArgumentList : public QObject
{
    Q_OBJECT

private slots:
    void theApplicationsListsAreRecognised_data();
    void theApplicationsListsAreRecognised();
    void otherListsAreNot_data();
    void otherListsAreNot();
};

void TestArgumentList::theApplicationsListsAreRecognised_data()
{
    QTest::addColumn<QString>("words");
    QTest::addColumn<Job>("job");
    QTest::addColumn<int>("outputs");
    row("extraction of two streams",
        "-y -guess_layout_max 0 -ss 0 -i in.mov -t 3 -map 0:1 a.wav -map 0:2 b.wav", Job::Extraction, 2);
    row("extraction without a stream", "-y -guess_layout_max 0 -ss 0 -i in.mov -t 3", Job::Extraction, 1);
    row("export", "-y -i in.mov -map 0:v -map_channel -0.1.0 -acodec pcm_s16le -vcodec copy out.MOV",
        Job::Export, 1);
    row("coded export",
        "-y -i in.mov -acodec pcm_s16le -vcodec dnxhd -b:v 36M -pix_fmt yuv422p -s "
        "1920x1080 -r 25/1 -timecode 10:00:00:00 -r 25 out.MOV",
        Job::Export, 1);
    row("sound export", "-y -i in.wav -write_bext 1 -metadata time_reference=5 -metadata comment=x out.WAV",
        Job::Export, 1);
    row("empty timecode", "-y -i in.mov -timecode '' -r 25 out.MOV", Job::Export, 1);
    row("folder that begins with a dash", "-y -i in.mov -vcodec copy -x/out.MOV", Job::Export, 1);
    row("source that begins with a dash", "-y -i -in.mov -vcodec copy out.MOV", Job::Export, 1);
}

void TestArgumentList::theApplicationsListsAreRecognised()
{
    QFETCH(QString, words);
    QFETCH(Job, job);
    QFETCH(int, outputs);
    const auto list = tooladapter::parseArguments(wordsOf(words));
    QVERIFY(list.has_value());
    QCOMPARE(tooladapter::jobOf(*list), job);
    QCOMPARE(int(list->outputs.size()), outputs);
    QCOMPARE(textOf(tooladapter::renderArguments(*list)), words);
}

void TestArgumentList::otherListsAreNot_data()
{
    QTest::addColumn<QString>("words");
    row("no word", "");
    row("only a question", "-version");
    row("an unknown option", "-y -i in.mov -c copy out.mov");
    row("two sources", "-y -i a.mov -i b.mov out.mov");
    row("no source", "-y out.mov");
    row("a source without a name", "-y -i");
    row("no leave to overwrite", "-i in.mov out.mov");
    row("two files to write", "-y -i in.mov a.mov b.mov");
    row("nothing to write", "-y -i in.mov");
}

void TestArgumentList::otherListsAreNot()
{
    QFETCH(QString, words);
    const auto list = tooladapter::parseArguments(wordsOf(words));
    QCOMPARE(list ? tooladapter::jobOf(*list) : Job::Unknown, Job::Unknown);
}

QTEST_APPLESS_MAIN(TestArgumentList)
#include "tst_argumentlist.moc"
