// SPDX-License-Identifier: MIT

// The version descriptor from the network, on its way to the notice that the user sees. Input: the document.

#include "app/versionnotice.h"
#include "tests/fuzz/fuzzinput.h"
#include "update/versiondescriptor.h"

#include <QGuiApplication>
#include <QTextDocument>

using fuzz::require;

namespace
{

/// Lays out a notice as the message box does.
class Notice : public QTextDocument
{
public:
    explicit Notice(const QString &richText)
    {
        setHtml(richText);
        size();
    }

protected:
    QVariant loadResource(int, const QUrl &url) override
    {
        require(false, "the notice loads nothing", url.toString());
        return {};
    }
};

void startToolkit()
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int count = 1;
    static char name[] = "fuzz_descriptor";
    static char *names[] = {name, nullptr};
    static const auto *const application = new QGuiApplication(count, names); // ends with the process
    Q_UNUSED(application)
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    startToolkit();
    fuzz::Input input(data, size);
    const auto descriptor = readVersionDescriptor(input.rest());
    if (!descriptor)
        return 0;
    isNewerVersion(descriptor->majorVersion, descriptor->minorVersion);
    const Notice notice(versionnotice::text(descriptor->downloadLink, descriptor->description));
    const QString scheme = descriptor->downloadLink.scheme();
    require(versionnotice::mayOpenLink(descriptor->downloadLink) == (scheme == "http" || scheme == "https"),
            "only web pages are opened", scheme);
    return 0;
}
