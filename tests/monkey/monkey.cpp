// SPDX-License-Identifier: MIT
#include "tests/monkey/monkey.h"

#include "filelist/filelist.h"
#include "tests/monkey/moods.h"
#include "tests/support/ownprocesses.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QRegularExpression>
#include <QTest>
#include <QThread>

#include <csignal>

namespace
{

constexpr int longestSettling = 60'000; // [ms] the machine may be busy
constexpr int mostActions = 12;
const char *const goodName = "good.mov";

template <typename Choice>
Choice any(testsignals::Random &random, const QVector<Choice> &choices)
{
    return choices.at(random.integer(0, choices.size() - 1));
}

void chooseAny(testsignals::Random &random, QComboBox *combo)
{
    combo->setCurrentIndex(random.integer(0, combo->count() - 1));
}

} // namespace

Monkey::Monkey(std::uint64_t seed)
    : random(testsignals::Random::forCase(seed, "actions", 0)),
      answers(testsignals::Random::forCase(seed, "answers", 0))
{
    qputenv("TMPDIR", QFile::encodeName(system.path()));
    qputenv("OSTREL_MONKEY_SEED", QByteArray::number(static_cast<qulonglong>(seed)));
    bench = std::make_unique<WindowBench>();
    fileList = bench->child<FileList>("fileList");
    QObject::connect(fileList, &FileList::importBusyChanged, [this](bool busy) { importRuns = busy; });
    inWorker = std::make_unique<QObject>();
    inWorker->moveToThread(bench->child<QThread>("workerThread"));
    exportFolder = bench->exportFolder();
    makeMedia();
    QObject::connect(&answering, &QTimer::timeout, [this] { answerBoxes(); });
    answering.start(1);
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
        const QString folder = bench->mediaFolder() + '/' + card;
        QDir().mkpath(folder);
        sourceFolders += folder;
        for (int i = 0; i < names.size(); ++i) {
            if (random.chance(0.4))
                continue;
            QFile file(addMedia(folder + '/' + names.at(i)));
            const int minute =
                names.at(i).startsWith("take") ? 0 : sources.size(); // both takes at one moment
            if (file.open(QIODevice::ReadWrite))
                file.setFileTime(recorded.addSecs(60LL * minute), QFileDevice::FileModificationTime);
        }
    }
}

/// Any button of the box in front, at some time.
void Monkey::answerBoxes()
{
    auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    if (!box || answers.chance(0.7))
        return;
    const QList<QAbstractButton *> buttons = box->buttons();
    if (!buttons.isEmpty())
        buttons.at(answers.integer(0, buttons.size() - 1))->click();
}

QStringList Monkey::play()
{
    const int count = random.integer(3, mostActions);
    for (int i = 0; i < count && bench->window->isVisible(); ++i)
        act();
    log += "settle";
    settle();
    if (bench->window->isVisible())
        workAsUsual();
    checkSources();
    checkExports();
    closeWindow();
    checkNothingIsLeft();
    return failures;
}

void Monkey::act()
{
    struct Action {
        int weight;
        void (Monkey::*perform)();
    };
    const QVector<Action> possible{{5, &Monkey::drop},         {4, &Monkey::select},
                                   {1, &Monkey::clickRow},     {3, &Monkey::pressDelete},
                                   {3, &Monkey::readAgain},    {4, &Monkey::exportFiles},
                                   {2, &Monkey::cancelExport}, {2, &Monkey::disturbTool}};
    constexpr double quitting = 0.02;
    if (random.chance(quitting))
        return quit();
    QVector<void (Monkey::*)()> lots;
    for (const Action &action : possible)
        lots.insert(lots.size(), action.weight, action.perform);
    (this->*any(random, lots))();
    pause(any<int>(random, {0, 0, 1, 5, 20, 60}));
}

void Monkey::drop()
{
    QStringList paths = sourceFolders + QStringList{bench->mediaFolder(), bench->mediaFolder() + "/nothing"};
    for (auto source = sources.cbegin(); source != sources.cend(); ++source)
        paths += source.key();
    paths.sort();
    QStringList dropped;
    for (int i = random.integer(1, 4); i > 0; --i)
        dropped += paths.at(random.integer(0, paths.size() - 1));
    log += "drop " + dropped.join(' ');
    bench->drop(dropped);
}

void Monkey::select()
{
    fileList->clearSelection();
    for (int i = random.integer(0, 3); i > 0 && fileList->rowCount() > 0; --i) {
        const int row = random.integer(0, fileList->rowCount() - 1);
        log += QString("select row %1").arg(row);
        fileList->selectionModel()->select(fileList->model()->index(row, 0),
                                           QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
}

void Monkey::clickRow()
{
    if (fileList->rowCount() == 0)
        return;
    const int row = random.integer(0, fileList->rowCount() - 1);
    log += QString("click row %1").arg(row);
    QTest::mouseClick(fileList->viewport(), Qt::LeftButton, Qt::NoModifier,
                      fileList->visualRect(fileList->model()->index(row, 0)).center());
}

void Monkey::pressDelete()
{
    if (random.chance(0.5))
        select();
    log += QString("delete, of %1 rows").arg(fileList->rowCount());
    QTest::keyClick(bench->window.get(), Qt::Key_Delete);
    log += QString("%1 rows are left").arg(fileList->rowCount());
}

void Monkey::readAgain()
{
    bench->child<QAction>("readAudioTCAction")->trigger();
    const QWidget *dialog = topLevel("audioTCWindow");
    const auto combos = dialog->findChildren<QComboBox *>();
    for (QComboBox *combo : combos)
        chooseAny(random, combo);
    log += "read " + dialog->findChild<QComboBox *>("filesCombo")->currentText();
    dialog->findChild<QPushButton *>("readAudioTCButton")->click();
}

void Monkey::exportFiles()
{
    auto *action = bench->child<QAction>(random.chance(0.7) ? "exportAllAction" : "exportAction");
    const QWidget *dialog = topLevel("exportWindow");
    if (!action->isEnabled())
        return;
    action->trigger();
    const QString folder =
        any<QString>(random, {exportFolder, exportFolder, exportFolder + "/../target/.",
                              sourceFolders.constFirst(), sourceFolders.constLast() + "/../card2"});
    dialog->findChild<QLineEdit *>("exportDirEdit")->setText(folder);
    chooseAny(random, dialog->findChild<QComboBox *>("videoTypeCombo"));
    chooseAny(random, dialog->findChild<QComboBox *>("audioTypeCombo"));
    dialog->findChild<QCheckBox *>("muteAudioTCCheckBox")->setChecked(random.chance(0.5));
    log += action->objectName() + " to " + folder;
    dialog->findChild<QPushButton *>("exportButton")->click();
}

void Monkey::cancelExport()
{
    if (!bench->cancelButton->isVisible())
        return;
    log += "cancel";
    bench->cancelButton->click();
}

void Monkey::disturbTool()
{
    const QVector<qint64> children = ownprocesses::children();
    if (children.isEmpty())
        return;
    const int signal = any<int>(random, {SIGKILL, SIGSTOP, SIGTERM});
    log += QString("signal %1 to a tool").arg(signal);
    ::kill(static_cast<pid_t>(any(random, children)), signal);
}

void Monkey::quit()
{
    log += "quit";
    if (random.chance(0.5))
        bench->child<QAction>("exitAction")->trigger();
    else
        bench->window->close();
}

void Monkey::pause(int milliseconds)
{
    if (milliseconds > 0)
        log += QString("%1 ms").arg(milliseconds);
    QTest::qWait(milliseconds);
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
    const bool exports = !bench->child<QAction>("exportAction")->isEnabled();
    return importRuns || exports || fileList->isReading() || !ownprocesses::children().isEmpty() ||
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
    require(!isBusy(), QString("everything ends, but import %1, reading %2, children %3, status \"%4\"")
                           .arg(importRuns)
                           .arg(fileList->isReading())
                           .arg(ownprocesses::children().size())
                           .arg(bench->status()));
}

/// After all that, one more file goes all the way, and progress counts this file alone.
void Monkey::workAsUsual()
{
    const QString good = addMedia(bench->mediaFolder() + '/' + goodName);
    const bool isEmpty = !fileList->item(0, 1); // or there is only the hint to drop files
    const int row = isEmpty ? 0 : fileList->rowCount();
    bench->drop({good});
    settle();
    require(fileList->rowCount() == row + 1, "the last file gets a row");
    const QString cell = fileList->item(row, 3) ? fileList->item(row, 3)->text() : "nothing";
    require(cell.startsWith(QString::fromStdString(moods::timecodeOf(good.toStdString()))),
            "the last file shows its timecode, not " + cell);
    require(bench->status() == "Status: import ready", "the last import is ready, not " + bench->status());
    require(bench->progressBar->maximum() == 3,
            QString("the last import counts one file, not %1 units").arg(bench->progressBar->maximum()));

    fileList->clearSelection();
    fileList->selectRow(row);
    const QString folder = exportFolder + "/last";
    QDir().mkpath(folder);
    bench->child<QAction>("exportAction")->trigger();
    const QWidget *dialog = topLevel("exportWindow");
    dialog->findChild<QLineEdit *>("exportDirEdit")->setText(folder);
    dialog->findChild<QComboBox *>("videoTypeCombo")->setCurrentIndex(0);
    dialog->findChild<QPushButton *>("exportButton")->click();
    settle();
    require(bench->progressBar->maximum() == 1, "the last export counts one file");
    require(QDir(folder).entryList(QDir::Files) == QStringList{goodName}, "the last file is exported");
    checkExport(folder + '/' + goodName);
}

void Monkey::closeWindow()
{
    if (!bench->window)
        return;
    answering.stop();
    inWorker.release()->deleteLater(); // with its thread
    bench->window.reset();
}

void Monkey::checkSources()
{
    for (auto source = sources.cbegin(); source != sources.cend(); ++source) {
        QFile file(source.key());
        require(file.open(QIODevice::ReadOnly) && file.readAll() == source.value(),
                "the source " + source.key() + " is as it was");
    }
}

void Monkey::checkExports()
{
    for (const QString &folder : sourceFolders + QStringList{exportFolder}) {
        const auto entries = QDir(folder).entryInfoList(QDir::Files | QDir::Hidden);
        for (const QFileInfo &entry : entries) {
            if (!sources.contains(entry.filePath()))
                checkExport(entry.filePath());
        }
    }
}

/// An export holds the path of its source and its start timecode; a broken one may hold less.
void Monkey::checkExport(const QString &path)
{
    QFile file(path);
    require(file.open(QIODevice::ReadOnly), "the export can be read " + path);
    const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
    require(lines.constFirst() != "two exports at once", "one export at a time writes " + path);
    if (lines.size() < 3 || lines.at(1).isEmpty())
        return;
    require(mayCarry(lines.at(0), lines.at(1)),
            QString("%1 carries the timecode of its source %2, not %3").arg(path, lines.at(0), lines.at(1)));
}

/// Whether an export of \a source may begin with \a start: with its own timecode, or that of the other part
/// of its recording.
bool Monkey::mayCarry(const QString &source, const QString &start) const
{
    QStringList files{source};
    const QFileInfo info(source);
    for (auto other = sources.cbegin(); other != sources.cend(); ++other) {
        const bool isPart = moods::isWave(other.key().toStdString()) && moods::isWave(source.toStdString()) &&
                            QFileInfo(other.key()).lastModified() == info.lastModified();
        if (isPart)
            files += other.key();
    }
    for (const QString &file : qAsConst(files)) {
        const std::string media = file.toStdString();
        const QString timecode = QString::fromStdString(moods::timecodeOf(media));
        const QString reference = "time_reference=" + QString::number(moods::samplesOf(media));
        if (start == (moods::isWave(media) ? reference : timecode) || start == timecode)
            return true;
    }
    // What was exported into a source's folder may have been imported from there.
    return !sources.contains(source) && moods::isWave(source.toStdString());
}

void Monkey::checkNothingIsLeft()
{
    QElapsedTimer timer;
    timer.start();
    while (!ownprocesses::children().isEmpty() && !timer.hasExpired(longestSettling))
        QThread::msleep(1);
    require(ownprocesses::children().isEmpty(), "no process is left");
    const QStringList left =
        QDir(system.path()).entryList({"OstrelSyncTemp*"}, QDir::AllEntries | QDir::Hidden);
    require(left.isEmpty(), "no temporary file is left, but " + left.join(' '));
}

void Monkey::require(bool holds, const QString &promise)
{
    if (!holds)
        failures += promise;
}
