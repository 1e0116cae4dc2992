// SPDX-License-Identifier: MIT

// Command lines: those of the timecode reader, and those of the tool adapter with what it makes of them.
//
// Input: which program, whether a file exists (reader) or the timecode channel and rate of the environment
// (adapter), then one word a line; for the adapter, the words end at an empty line and the probe's text
// follows.

#include "ltcreader/commandline.h"
#include "tests/fuzz/fuzzinput.h"
#include "tooladapter/rules/exportplan.h"
#include "tooladapter/rules/exportrules.h"
#include "tooladapter/rules/extractionrules.h"
#include "tooladapter/rules/refusal.h"
#include "tooladapter/verify/writtenfile.h"

#include <QRegularExpression>

#include <algorithm>

using fuzz::require;

namespace
{

using Words = std::vector<std::string>;

QString shown(const Words &words)
{
    QStringList texts;
    for (const std::string &word : words)
        texts += QString::fromStdString(word);
    return texts.join('|');
}

/// The lines up to an empty one or the end.
Words takeWords(fuzz::Input &input)
{
    Words words;
    for (QByteArray line = input.line(); !line.isEmpty(); line = input.line()) {
        const std::string word = line.toStdString();
        words.push_back(word.substr(0, word.find('\0'))); // as programs get their words
    }
    return words;
}

void readerCommand(fuzz::Input &input)
{
    using namespace ltcreader;
    const bool filesExist = input.choice(2) == 1;
    const Words words = takeWords(input);
    const Command command = parseCommandLine(words, [filesExist](const std::string &) { return filesExist; });
    if (const auto *refusal = std::get_if<Refusal>(&command)) {
        require(!refusal->reason.empty() && static_cast<int>(refusal->code) != 0, "a refusal has a reason");
    } else if (const auto *run = std::get_if<Run>(&command)) {
        require(std::find(words.begin(), words.end(), run->path) != words.end(), "the file was named",
                shown(words));
        require(run->settings.channel >= -1, "a channel is counted from 0");
        require(run->settings.frameRate == -1.0 || rateClass(run->settings.frameRate),
                "a rate is one of LTC");
    }
}

bool isTimecode(const std::string &text)
{
    static const QRegularExpression form("\\A([01][0-9]|2[0-3]):[0-5][0-9]:[0-5][0-9][:;][0-9]{2,3}\\z");
    return form.match(QString::fromStdString(text)).hasMatch();
}

void checkExport(const tooladapter::ArgumentList &list, const tooladapter::Source &source,
                 const tooladapter::Export &job)
{
    const Words &words = job.arguments;
    const QString text = shown(words);
    require(words.back() == tooladapter::filePath(list.outputs.front().path), "the output stays", text);
    const auto input = std::find(words.begin(), words.end(), "-i");
    require(input != words.end() && input + 1 != words.end() &&
                *(input + 1) == tooladapter::filePath(list.input),
            "the input stays", text);
    for (auto option = words.begin(); option + 1 != words.end();) {
        if (*option == "-timecode")
            require(isTimecode(*(option + 1)), "the timecode is well-formed", text);
        option += *option == "-y" || *option == "-xerror" ? 1 : 2; // all others have a value
        require(option < words.end(), "every option has its value", text);
    }
    require(job.pictureStream < static_cast<int>(source.streams.size()), "the picture exists", text);
    for (const tooladapter::WrittenAudio &audio : job.audio) {
        require(audio.stream >= 0 && audio.stream < static_cast<int>(source.streams.size()),
                "the audio stream exists", text);
        const int all = source.streams[static_cast<std::size_t>(audio.stream)].channels;
        require(audio.channels == all || audio.channels == all - 1, "one channel goes at most", text);
    }
}

void adapterCommand(fuzz::Input &input)
{
    using namespace tooladapter;
    const std::string channel = input.line().toStdString();
    const std::string rate = input.line().toStdString();
    const auto list = parseArguments(takeWords(input));
    if (!list)
        return;
    const auto again = parseArguments(renderArguments(*list));
    require(again && renderArguments(*again) == renderArguments(*list), "no word is lost",
            shown(renderArguments(*list)));
    const Job job = jobOf(*list);
    try {
        if (job == Job::Extraction)
            rewriteExtraction(*list, parseProbe(input.rest().toStdString()));
        if (job == Job::Export) {
            const std::string report = input.rest().toStdString();
            const Source source = parseProbe(report);
            Hints hints;
            hints.timecodeChannel = channelFromText(channel);
            hints.timecodeRate = FrameRate::fromText(rate);
            const Export exported = exportOf(planOf(*list, source, hints), source, hints);
            checkExport(*list, source, exported);
            require(!faultIn({}, exported, source).empty() || exported.audio.empty(),
                    "a file without sound is incomplete");
            faultIn(source, exported, source);
        }
    } catch (const Refusal &refusal) {
        require(*refusal.what() != '\0', "a refusal has a reason");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    if (input.choice(2) == 0)
        readerCommand(input);
    else
        adapterCommand(input);
    return 0;
}
