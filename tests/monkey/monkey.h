// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/fixtures/windowfixture.h"
#include "testkit/signals/random.h"

#include <QDateTime>
#include <QHash>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

class FileList;

/// One sequence of random actions in the real window, with tools in random moods, and the checks after it.
///
/// All follows from the seed, but for the order in which processes and threads get on.
class Monkey
{
public:
    explicit Monkey(std::uint64_t seed);
    ~Monkey();
    Monkey(const Monkey &) = delete;
    Monkey &operator=(const Monkey &) = delete;

    /// Plays the sequence and checks. Returns what was found wrong, nothing when all is well.
    QStringList play();

    /// What was done, a line each.
    const QStringList &actions() const { return log; }

private:
    static constexpr int longestSettling = 60'000; ///< [ms] the machine may be busy

    // in monkey.cpp
    void makeMedia();
    QString addMedia(const QString &path);
    QAbstractButton *answerBox(const QMessageBox &box);
    bool isBusy() const;
    void settle();
    void flushWorker();
    void sendTo(int signal, const char *name);
    void workAsUsual();
    void closeWindow();

    // in monkeyactions.cpp
    void act();
    void drop();
    void select();
    void clickRow();
    void pressDelete();
    void readAgain();
    void exportFiles();
    void cancelExport();
    void disturbTool();
    void quit();
    void pause(int milliseconds);

    // in monkeychecks.cpp
    void checkSources();
    void checkExports();
    void checkExport(const QString &path);
    void checkNothingIsLeft();
    bool mayCarry(const QString &source, const QString &start) const;
    void require(bool holds, const QString &promise);

    testsignals::Random random;
    testsignals::Random answers; ///< to message boxes, whose number follows from the tools' haste
    QStringList log;
    QStringList failures;
    QTemporaryDir system; ///< the system's temporary folder of this sequence
    std::unique_ptr<WindowFixture> fixture;
    FileList *fileList = nullptr;
    std::unique_ptr<QObject> inWorker; ///< lives in the worker's thread
    QStringList sourceFolders;
    QHash<QString, QByteArray> sources; ///< path and content of all media files
    QString exportFolder;
};
