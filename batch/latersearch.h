// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/audiotcoptions.h"
#include "app/records/filedata.h"
#include "batch/laterfinding.h"
#include "batch/laterwindows.h"

#include <QObject>
#include <QTemporaryDir>
#include <QVector>

#include <functional>
#include <optional>

/// Searches one file for timecode to its end, window after window. It begins with the first one again, since
/// timecode is not counted back through labels that do not count up. The tools run one after the other.
///
/// Reports once. Deleted before, it kills its tool and reports nothing.
class LaterSearch : public QObject
{
    Q_OBJECT

public:
    /// \a file has its row, which comes back with the result; \a reading is what the user has chosen, none =
    /// automatic.
    LaterSearch(const FileData &file, const std::optional<AudioTCOptions> &reading, QObject *parent);

    void start() { searchWindow(); }

    /// How many windows have not been searched yet.
    int windowsLeft() const;

signals:
    void advanced();
    void done(LaterSearch *search, int row, LaterFinding finding);

private:
    using Next = std::function<void(int exitCode)>;

    void searchWindow();
    void readStream(int place);
    void prove(int place);
    void judge(int place);
    void run(const QString &program, const QStringList &arguments, const Next &next);
    void extract(const QStringList &arguments, const std::function<void()> &next);
    void read(const QString &path, QJsonObject &result, int place, const std::function<void()> &next);
    void end(const LaterFinding &finding);
    void fail(int exitCode);

    FileData file; ///< with the row
    std::optional<AudioTCOptions> reading;
    QTemporaryDir folder; ///< of the windows' sound
    QVector<int> streams;
    int second = 0;                  ///< [s] at which the window begins
    laterwindows::Readings readings; ///< of the stream that is being read
    QString doubt;                   ///< why the timecode that was found last does not count
    QByteArray output;               ///< of the tool that runs
    QByteArray standardError;        ///< the same
};
