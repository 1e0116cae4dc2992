// SPDX-License-Identifier: MIT
#include "tests/monkey/monkey.h"

#include "filelist/filelist.h"
#include "testkit/faketools/moods.h"
#include "testkit/fixtures/ownprocesses.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QTest>
#include <QThread>

#include <csignal>

namespace
{

constexpr int mostActions = 12;
const char *const goodName = "good.mov";

} // namespace

Monkey::Monkey(std::uint64_t seed)
    : random(testsignals::Random::forCase(seed, "actions", 0)),
      answers(testsignals::Random::forCase(seed, "answers", 0))
{
    qputenv("TMPDIR", QFile::encodeName(system.path()));
    qputenv("OSTREL_FAKE_MOODS", QByteArray::number(static_cast<qulonglong>(seed)));
    fixture = std::make_unique<WindowFixture>();
    fileList = fixture->child<FileList>("fileList");
    inWorker = std::make_unique<QObject>();
    inWorker->moveToThread(fixture->child<QThread>("workerThread"));
    exportFolder = fixture->exportFolder();
    makeMedia();
    fixture->boxes.answerOthers([this](const QMessageBox &box) { return answerBox(box); });
}

Monkey::~Monkey()
{
    closeWindow();
    qunsetenv("TMPDIR");
}

QString Monkey::addMedia(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(path));
    sources[path] = "original " + path.toUtf8();
    file.write(sources[path]);
    return path;
}

/// A few files in two folders: names that come twice, parts of one recording, odd characters.
void Monkey::makeMedia()
{
    const QStringList names{"clip.mov", "clip.wav",  "take.wav",  "take_2.wav",    "a.b.mxf",
                            "-i.mp4",   "100%1.mts", "x_1_0.mov", "Ton \u00e4.WAV"};
    const QDateTime recorded = QDateTime::currentDateTime().addDays(-1);
    for (const char *card : {"card1", "card2"}) {
        const QString folder = fixture->mediaFolder() + '/' + card;
        QDir().mkpath(folder);
        sourceFolders += folder;
        for (int i = 0; i < names.size(); ++i) {
            if (random.chance(0.4))
                continue;
            QFile file(addMedia(folder + '/' + names.at(i)));
            const auto minute =
                names.at(i).startsWith("take") ? 0 : sources.size(); // both takes at one moment
            if (file.open(QIODevice::ReadWrite))
                file.setFileTime(recorded.addSecs(60LL * minute), QFileDevice::FileModificationTime);
        }
    }
}

/// Any button of the box in front, at some time.
QAbstractButton *Monkey::answerBox(const QMessageBox &box)
{
    const QList<QAbstractButton *> buttons = box.buttons();
    return answers.chance(0.7) || buttons.isEmpty()
               ? nullptr
               : buttons.at(answers.integer(0, static_cast<int>(buttons.size()) - 1));
}

QStringList Monkey::play()
{
    const int count = random.integer(3, mostActions);
    for (int i = 0; i < count && fixture->window->isVisible(); ++i)
        act();
    log += "settle";
    settle();
    if (fixture->window->isVisible())
        workAsUsual();
    checkSources();
    checkExports();
    closeWindow();
    checkNothingIsLeft();
    return failures;
}

/// Lets the worker do what it was asked to, and the window take what it answered.
void Monkey::flushWorker()
{
    QMetaObject::invokeMethod(
        inWorker.get(), [] {}, Qt::BlockingQueuedConnection);
    QCoreApplication::processEvents();
}

bool Monkey::isBusy() const
{
    const bool exports = !fixture->child<QAction>("exportAction")->isEnabled();
    return fileList->pendingWork().isBusy() || exports || !ownprocesses::children().isEmpty() ||
           QApplication::activeModalWidget();
}

/// Sends \a signal to all tools; with \a name, to those that call themselves so.
void Monkey::sendTo(int signal, const char *name)
{
    const QVector<qint64> children = ownprocesses::children();
    for (const qint64 child : children) {
        if (!name || ownprocesses::nameOf(child) == name)
            ::kill(static_cast<pid_t>(child), signal);
    }
}

/// Waits until everything has come to its end, once the tools that would never end are killed.
void Monkey::settle()
{
    constexpr int quietRounds = 3; // a queued request may make the next one
    QElapsedTimer timer;
    timer.start();
    for (int quiet = 0; quiet < quietRounds && !timer.hasExpired(longestSettling);) {
        sendTo(SIGCONT, nullptr);
        sendTo(SIGKILL, "never");
        flushWorker();
        quiet = isBusy() ? 0 : quiet + 1;
        if (quiet == 0)
            QTest::qWait(5);
    }
    require(!isBusy(), QString("everything ends, but import or reading %1, children %2, status \"%3\"")
                           .arg(fileList->pendingWork().isBusy())
                           .arg(ownprocesses::children().size())
                           .arg(fixture->status()));
    require(fileList->viewport()->cursor().shape() == Qt::ArrowCursor, "the pointer is not busy any more");
}

/// After all that, one more file goes all the way, and progress counts this file alone.
void Monkey::workAsUsual()
{
    const QString good = addMedia(fixture->mediaFolder() + '/' + goodName);
    const bool isEmpty = !fileList->item(0, 1); // or there is only the hint to drop files
    const int row = isEmpty ? 0 : fileList->rowCount();
    fixture->drop({good});
    settle();
    require(fileList->rowCount() == row + 1, "the last file gets a row");
    const QString cell = fileList->item(row, 3) ? fileList->item(row, 3)->text() : "nothing";
    require(cell.startsWith(QString::fromStdString(moods::timecodeOf(good.toStdString()))),
            "the last file shows its timecode, not " + cell);
    require(fixture->status() == "Status: import ready",
            "the last import is ready, not " + fixture->status());
    require(fixture->progressBar->maximum() == 3,
            QString("the last import counts one file, not %1 units").arg(fixture->progressBar->maximum()));

    fileList->clearSelection();
    fileList->selectRow(row);
    const QString folder = exportFolder + "/last";
    QDir().mkpath(folder);
    fixture->child<QAction>("exportAction")->trigger();
    const QWidget *dialog = topLevel("exportWindow");
    dialog->findChild<QLineEdit *>("exportDirEdit")->setText(folder);
    dialog->findChild<QComboBox *>("videoTypeCombo")->setCurrentIndex(0);
    dialog->findChild<QPushButton *>("exportButton")->click();
    settle();
    require(fixture->progressBar->maximum() == 1, "the last export counts one file");
    require(QDir(folder).entryList(QDir::Files) == QStringList{goodName}, "the last file is exported");
    checkExport(folder + '/' + goodName);
}

void Monkey::closeWindow()
{
    if (!fixture->window)
        return;
    fixture->boxes.answerOthers({});
    inWorker.release()->deleteLater(); // with its thread
    fixture->window.reset();
}
