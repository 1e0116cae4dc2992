// SPDX-License-Identifier: MIT
// Linux: knows its own file through /proc.
#include "tooladapter/adapter.h"

#include "tooladapter/chunks/fieldatom.h"
#include "tooladapter/chunks/keptchunks.h"
#include "tooladapter/posix/childprocess.h"
#include "tooladapter/posix/toolsearch.h"
#include "tooladapter/posix/turn.h"
#include "tooladapter/rules/exportplan.h"
#include "tooladapter/rules/exportrules.h"
#include "tooladapter/rules/extractionrules.h"
#include "tooladapter/rules/refusal.h"
#include "tooladapter/rules/source.h"
#include "tooladapter/rules/tagrules.h"
#include "tooladapter/verify/writtenfile.h"

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <system_error>
#include <thread>

namespace tooladapter
{
namespace
{

std::string environment(const char *name)
{
    const char *value = std::getenv(name);
    return value ? value : "";
}

std::string toolPath(const std::string &tool)
{
    std::string path = findTool(tool, environment("PATH"), "/proc/self/exe");
    if (path.empty())
        throw ToolMissing("no program \"" + tool +
                          "\" in PATH; install it, on Debian with \"apt install ffmpeg\"");
    return path;
}

Source probe(const std::string &path)
{
    std::string output;
    if (capture({toolPath("ffprobe"), probeArguments(path)}, output) != 0)
        throw Refusal(path + " cannot be read");
    return parseProbe(output);
}

/// What the application reports about the source that it gives to its tools; nothing without a report.
Source toldSource()
{
    return parseProbe(environment("OSTREL_SOURCE"));
}

/// The source of \a list. The application probed it at the import and passes on most of that; another caller
/// may not.
Source sourceOf(const ArgumentList &list)
{
    Source source = toldSource();
    const std::string path = filePath(list.input);
    if (source.streams.empty())
        return probe(path);
    if (lacksNotes(source, list.input, list.outputs.front().path))
        source.notes = probe(path).notes;
    return source;
}

/// Throws Refusal where the file that \a job has left is not complete, as the probe tool sees it.
void checkWrittenFile(const Export &job, const Source &source)
{
    std::string report;
    const bool isRead = capture({toolPath("ffprobe"), checkArguments(job, source)}, report) == 0;
    const std::string fault =
        isRead ? faultIn(parseProbe(report), job, source) : job.path + " cannot be read";
    if (!fault.empty())
        throw Refusal(fault);
}

/// Gives what is left of a failed export a name that no one mistakes for a good file. A name that cannot
/// be given stays as it is.
void setAside(const std::string &path)
{
    std::error_code ignored;
    if (std::filesystem::is_regular_file(path, ignored))
        std::filesystem::rename(path, path + ".incomplete", ignored);
}

/// Runs the tool, adds to the file what the tool leaves out, and has it checked. The tool stays this
/// process's child, since one that reports success may have left a file that ends too early.
int write(const ExportPlan &plan, const Export &job, const Source &source, const Hints &hints)
{
    const int exitCode = run({toolPath("ffmpeg"), job.arguments});
    if (exitCode != 0)
        return exitCode;
    if (job.notesFields)
        noteFieldOrder(job.path, source.at(job.pictureStream).topFieldFirst());
    if (plan.container == Container::Wave)
        keepChunks(filePath(plan.input), job.path, waveChangesOf(plan, hints.timecodeRate));
    checkWrittenFile(job, source);
    return exitCode;
}

int runExport(const ArgumentList &list)
{
    const Source source = sourceOf(list);
    Hints hints = hintsFrom(environment);
    hints.processors = static_cast<int>(std::thread::hardware_concurrency());
    const ExportPlan plan = planOf(list, source, hints);
    const Export job = exportOf(plan, source, hints);
    std::optional<Turn> turn;
    if (job.together > 0)
        turn.emplace(job.together);
    try {
        const int exitCode = write(plan, job, source, hints);
        if (exitCode != 0)
            setAside(job.path);
        return exitCode;
    } catch (const Refusal &) {
        setAside(job.path);
        throw;
    }
}

} // namespace

int runAs(const std::string &ownPath, const std::vector<std::string> &arguments)
{
    const std::string tool = toolNameOf(ownPath);
    if (tool != "ffmpeg" && tool != "ffprobe")
        throw Refusal("stands for a media tool; call it as \"ffmpeg.exe\" or \"ffprobe.exe\"");

    const std::string path = toolPath(tool);
    const bool corrects = tool == "ffmpeg" && environment("OSTREL_TOOL_ADAPTER") != "off";
    const auto list = corrects ? parseArguments(arguments) : std::nullopt;
    const Job job = list ? jobOf(*list) : Job::Unknown;
    if (job == Job::Export)
        return runExport(*list);
    if (job == Job::Extraction)
        return become({path, renderArguments(rewriteExtraction(*list, toldSource()))});
    return become({path, arguments});
}

} // namespace tooladapter
