// SPDX-License-Identifier: MIT
// What must hold after everything that a monkey has done.
#include "testkit/faketools/moods.h"
#include "testkit/fixtures/ownprocesses.h"
#include "tests/monkey/monkey.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <utility>

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
    const QStringList folders = sourceFolders + QStringList{exportFolder};
    for (const QString &folder : folders) {
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
    for (const QString &file : std::as_const(files)) {
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
