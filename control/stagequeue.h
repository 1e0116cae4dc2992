// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/audiotcoptions.h"
#include "app/records/filedata.h"

#include <QList>
#include <QUrl>
#include <QVector>

#include <deque>
#include <optional>
#include <variant>

/// Lets one stage run at a time, an import or a second reading; what is asked for meanwhile waits.
class StageQueue
{
public:
    /// The operation that the import counters and the temporary folder belong to.
    enum class Stage { None, Import, ReRead };

    struct ReReadRequest {
        QVector<FileData> files;
        AudioTCOptions options;
    };
    using Request = std::variant<QList<QUrl>, ReReadRequest>; ///< a drop, or a second reading

    Stage current() const { return stage; }
    void begin(Stage begun) { stage = begun; }
    void close() { stage = Stage::None; }

    /// Whether \a request is to begin now; otherwise it waits from now on. \a idle: no job of a stage runs or
    /// waits.
    bool admit(const Request &request, bool idle);

    /// The longest waiting request, when it may begin now; it waits no more.
    std::optional<Request> takeNext(bool idle);

    /// Forgets what waits.
    void clear() { waiting.clear(); }

private:
    bool isFree(const Request &request, bool idle) const;

    Stage stage = Stage::None;
    std::deque<Request> waiting;
};
