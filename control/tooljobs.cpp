// SPDX-License-Identifier: MIT
#include "control/tooljobs.h"

#include "app/records/resultcodes.h"
#include "control/maincontrol.h"
#include "ffmpeg/ffmpeghandler.h"
#include "ltc/ltchandler.h"

namespace tooljobs
{

namespace
{

template <typename Handler>
void deleteHandlers(MainControl *control)
{
    const auto handlers = control->findChildren<Handler *>();
    for (Handler *handler : handlers) {
        handler->disconnect(control); // the end of its tool is no result any more
        delete handler;
    }
}

} // namespace

void probe(MainControl *control, const FileData &file)
{
    const auto fileNumber = static_cast<uint>(file.rowNumber);
    auto *handler = new FFMpegHandler(control);
    QObject::connect(handler, &FFMpegHandler::ffprobeResult, control, &MainControl::onFFProbeReady);
    QObject::connect(handler, &FFMpegHandler::couldNotStart, control,
                     [control, fileNumber](FFMpegHandler *failed) {
                         control->onFFProbeReady(failed, {}, fileNumber, toolNotStarted);
                     });
    handler->probe(file.absoluteFilePath, fileNumber);
}

void extract(MainControl *control, const FileData &file, const QString &folder)
{
    auto *handler = new FFMpegHandler(control);
    QObject::connect(handler, &FFMpegHandler::ffmpegAudioExtractResult, control,
                     &MainControl::onAudioExtractReady);
    QObject::connect(handler, &FFMpegHandler::couldNotStart, control, [control](FFMpegHandler *failed) {
        control->onAudioExtractReady(failed, failed->fileData(), toolNotStarted);
    });
    handler->extractAudio(file, folder);
}

void read(MainControl *control, const QString &path, const std::optional<AudioTCOptions> &options,
          bool isGoPro)
{
    auto *handler = new LTCHandler(control);
    QObject::connect(handler, &LTCHandler::ltcReaderResult, control, &MainControl::onLTCReaderReady);
    QObject::connect(handler, &LTCHandler::couldNotStart, control, [control, path](LTCHandler *failed) {
        control->onLTCReaderReady(failed, {}, path, readerNotInitialised);
    });
    if (options)
        handler->readTimecode(path, *options, isGoPro);
    else
        handler->readTimecode(path, isGoPro);
}

void exportFile(MainControl *control, const FileData &file, const ExportBatch &batch)
{
    auto *handler = new FFMpegHandler(control);
    QObject::connect(handler, &FFMpegHandler::ffmpegExportResult, control, &MainControl::onExportReady);
    QObject::connect(handler, &FFMpegHandler::ffmpegExportProgress, control, &MainControl::onExportProgress);
    const uint units = batch.options().progressSteps;
    QObject::connect(handler, &FFMpegHandler::couldNotStart, control,
                     [control, units](FFMpegHandler *failed) {
                         control->onExportProgress(units);
                         control->onExportReady(failed, toolNotStarted);
                     });
    QObject::connect(control, &MainControl::cancelExportReq, handler, &FFMpegHandler::onExportCancel);
    handler->setBatchSize(batch.fileCount());
    if (const MainControl::NameClaim &claim = control->claimOfNames())
        handler->setNameClaim([claim, file](const QString &path) { return claim(file, path); });
    handler->buildExportArguments(file, batch.options());
}

void endAll(MainControl *control)
{
    // All are killed before the first is waited for.
    const auto processes = control->findChildren<QProcess *>();
    for (QProcess *process : processes)
        process->kill();
    deleteHandlers<FFMpegHandler>(control);
    deleteHandlers<LTCHandler>(control);
}

} // namespace tooljobs
