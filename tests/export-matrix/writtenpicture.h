// SPDX-License-Identifier: MIT
#pragma once

#include "tests/export-matrix/cardreading.h"
#include "tests/export-matrix/keeping.h"
#include "tests/export-matrix/pictureshape.h"

#include <QJsonObject>

#include <optional>

namespace exportmatrix
{

/// What a file says of its picture and what its frames show.
struct WrittenPicture {
    int width = 0;  ///< [pixels] as stored
    int height = 0; ///< [pixels] as stored
    double pixelAspect = 1.0;
    int rotation = 0; ///< [degrees clockwise]
    QString pixelFormat;
    std::optional<Fields> fields; ///< none = the file does not say
    ColourTags colours;
    CardReading card;
};

/// What the probe tool's report \a stream says; no card is read.
WrittenPicture pictureOf(const QJsonObject &stream);

/// How the picture must arrive.
struct WantedPicture {
    bool isFitted = false; ///< into 1920x1080, with bars where its shape is another
    Fields fields = Fields::Progressive;
};

/// What became of the picture \a shape in \a written.
QVector<Finding> comparePicture(const PictureShape &shape, const WrittenPicture &written,
                                const WantedPicture &wanted);

} // namespace exportmatrix
