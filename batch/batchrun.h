// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/audiotcoptions.h"
#include "app/records/exportoptions.h"
#include "batch/exportnotes.h"
#include "batch/exportstate.h"
#include "batch/filecheck.h"
#include "batch/laterfinding.h"
#include "batch/openrows.h"
#include "filelist/importedfiles.h"

#include <QJsonArray>
#include <QObject>
#include <QStringList>
#include <QThread>
#include <QUrl>

#include <algorithm>
#include <optional>

class LaterSearch;
class MainControl;

/// One run without a window: has the controller import files and export them, as the table of the window
/// does, and knows when a file is done.
///
/// Lives in the controller's thread; all calls between the two are queued, as they are between two threads.
class BatchRun : public QObject
{
    Q_OBJECT

public:
    /// \a control answers the requests; it is not owned. Without \a exporting nothing is exported.
    BatchRun(MainControl *control, const std::optional<ExportOptions> &exporting);

    /// Whether new files are checked against their sources. By default they are.
    void setVerifying(bool verifying) { isVerifying = verifying; }

    /// Whether what an earlier run has exported and proven is left as it is. By default it is exported again.
    void setResuming(bool resuming) { isResuming = resuming; }

    /// Has files that carry no timecode in their first seconds searched to their end, with \a reading as the
    /// user has chosen it; none = automatic. By default they are not.
    void searchLater(const std::optional<AudioTCOptions> &reading);

    /// Runs at most \a count checks or searches together, above 0; by default one for each processor.
    void setJobLimit(int count) { jobLimit = std::min(jobLimit, count); }

    /// Begins with \a paths, files and folders. ended() follows in any case.
    void start(const QStringList &paths);

    /// Ends the run soon: no tool goes on, what is not done stays so, and half-written files are removed.
    /// ended() follows, unless it has come before.
    void stop();

    const ImportedFiles &importedFiles() const { return files; }

    /// How the export of the existing \a row has come out.
    const ExportState &exportState(int row) const { return exports.at(row); }

    /// What came of searching the rest of the existing \a row.
    const LaterFinding &laterFinding(int row) const { return laterFindings.at(row); }

    /// Whether \a row was not read, or not exported although that was asked for.
    bool hasFailed(int row) const;

    /// Why, or why there is no timecode or no new file; empty where all is well.
    QString reasonOf(int row) const;

    /// What the reports say of all files, in the order of their paths.
    QJsonArray records() const;

    /// Whether a file has failed.
    bool hasFailures() const;

signals:
    void iterateThroughDirReq(QList<QUrl> urls);
    void ffprobeFileReq(FileData fileData, int rowNumber);
    void initAudioTCInfoReq(FileData fileData, int rowNumber);
    void exportFilesReq(QVector<FileData> exportFileVector, ExportOptions exportOptions);
    void cancelExport();

    /// No further result will change \a row; all rows are known by the first time.
    void rowDone(int row);
    void progressed(QString what, int done, int total);
    void ended();

private slots:
    void addFile(QFileInfo fileInfo);
    void onFFProbeResult(FileData fileData, int fileNumber, int exitCode);
    void onAudioTCReadReturn(QJsonObject ltcResultJson, int fileNumber, int audioTCStreamIndex, int exitCode);
    void onImportProgress(int current, int total);
    void onImportEnd();
    void onSearched(LaterSearch *search, int row, const LaterFinding &finding);
    void onExportProgress(int current, int total);
    void onFileExported(int rowNumber, QString outputPath, int exitCode);
    void onExportEnd();
    void onChecked(FileCheck *check, int row, const Verdict &verdict);

private:
    enum class Phase { Idle, Reading, Searching, Exporting };

    QVector<int> rowsByPath() const;
    void report(const QVector<int> &rows);
    bool mayCarryLater(int row) const;
    void startSearching();
    void startSearches();
    void reportSearching();
    void endSearching();
    void goOn();
    void startExport();
    bool takeEarlier(const FileData &file);
    void startChecks();
    void setVerdict(int row, const Verdict &verdict);
    void setAside(int row);
    bool isUnchecked(int row) const;
    void endWhenChecked();
    void end();

    MainControl *control;
    std::optional<ExportOptions> exporting;
    ImportedFiles files; ///< one record per row, in row order
    OpenRows open;
    QVector<ExportState> exports;        ///< in row order
    QVector<LaterFinding> laterFindings; ///< in row order
    Phase phase = Phase::Idle;
    std::optional<AudioTCOptions> searchReading;
    QVector<int> searchedRows;                               ///< all that are searched
    QVector<int> unsearchedRows;                             ///< those of them that wait
    QVector<LaterSearch *> searches;                         ///< that run
    QVector<int> uncheckedRows;                              ///< their new files wait to be checked
    QVector<FileCheck *> checks;                             ///< that run
    std::optional<ExportNotes> notes;                        ///< of the exports; none = nothing is exported
    int jobLimit = std::max(1, QThread::idealThreadCount()); ///< each keeps a processor busy
    bool isVerifying = true;
    bool isResuming = false;
    bool isSearchingLater = false;
    bool isExportOver = false; ///< the controller has ended its batch
    bool isStopped = false;    ///< by stop()
};
