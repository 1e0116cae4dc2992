// SPDX-License-Identifier: MIT
#pragma once

#include "tests/export-matrix/filefacts.h"

#include <QByteArray>
#include <QPair>
#include <QString>
#include <QVector>

/// The chunks of sound files, read and written here without the code that is being tested.
namespace exportmatrix::wavechunks
{

/// Name of four characters and content.
using Chunk = QPair<QByteArray, QByteArray>;

/// What a field recorder notes in a sound file with \a channels channels at \a sampleRate [samples/s]:
/// description, scene and take, the names of the tracks, markers. \a timecodeChannel (from 0, -1 = none) is
/// noted as such. The samples are said to have \a bits.
QVector<Chunk> ofRecorder(int channels, int timecodeChannel, int sampleRate, int bits = 24);

/// \a file, the bytes of a RIFF or RF64 file, with \a chunks behind the samples, or before them where
/// \a isBefore; one of the same name is replaced. Throws std::runtime_error when \a file is no such file.
QByteArray withChunks(const QByteArray &file, const QVector<Chunk> &chunks, bool isBefore = false);

/// The chunks of \a file but "ds64"; of the samples only the name. Empty when it is no such file.
QVector<Chunk> chunksOf(const QByteArray &file);

/// The facts that \a chunks hold. Tracks of the list in iXML are numbered by their channel in the source:
/// \a channels are the source's numbers of the channels in this file.
Facts factsOf(const QVector<Chunk> &chunks, const QVector<int> &channels);

/// The facts in \a report, what the program sndfile-metadata-get prints of a file.
Facts factsOfReport(const QString &report);

} // namespace exportmatrix::wavechunks
