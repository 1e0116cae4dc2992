// SPDX-License-Identifier: MIT
#include "app/records/optiontables.h"
#include "app/windowtexts.h"
#include "ltc/readererrors.h"

#include <QtTest>

#include <utility>

/// What people read says what the program says.
class TestDocumentation : public QObject
{
    Q_OBJECT

private slots:
    void manualExplainsWhatTheWindowSays_data();
    void manualExplainsWhatTheWindowSays();
    void linksLeadToFilesAndHeadings_data();
    void linksLeadToFilesAndHeadings();
};

namespace
{

QString content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QString firstLine(const QString &text)
{
    return text.section('\n', 0, 0);
}

/// A heading as a link names it: lower case, blanks as hyphens, no punctuation.
QString anchorOf(const QString &heading)
{
    static const QRegularExpression punctuation("[^\\w-]");
    QString anchor = heading.toLower().replace(' ', '-');
    return anchor.remove(punctuation);
}

QStringList anchorsOf(const QString &page)
{
    QStringList anchors;
    const QStringList lines = page.split('\n');
    for (const QString &line : lines) {
        if (line.startsWith('#'))
            anchors += anchorOf(line.section(' ', 1));
    }
    return anchors;
}

void addTexts(const QStringList &texts)
{
    for (const QString &text : texts)
        QTest::addRow("%s", qPrintable(text)) << text;
}

} // namespace

void TestDocumentation::manualExplainsWhatTheWindowSays_data()
{
    QTest::addColumn<QString>("text");
    constexpr int highestCode = 3000;
    for (int code = 1; code < highestCode; ++code) {
        if (const QString text = readerErrorText(code); !text.isEmpty())
            QTest::addRow("%d: %s", code, qPrintable(text)) << text;
    }
    addTexts(exportTypes.keys());
    addTexts(audioTypes.keys());
    addTexts({"LOW", "MID", "HIGH", "SLOPE", "Mute audio TC", "Read Audio TC", "Export All"});
    addTexts({"init file TC", "init audio TC", "file TC not found", "@(linked)", "kept for export: "});
    addTexts({"importing files...", "prepare files for reading...", "reading audio TC...", "import ready",
              "read finished", "exporting files...", "cancelling export...", "export cancelled"});
    addTexts({"Selected directory doesn't exists", "Cannot write to selected directory",
              "Are you sure you want to cancel?", "Ostrel did the job!",
              "There is a new software version available!"});
    addTexts({firstLine(windowtexts::missingTools({})).section(':', 0, 0),
              windowtexts::failedExports({"a.mov"}).section('\n', 1, 1)});
}

void TestDocumentation::manualExplainsWhatTheWindowSays()
{
    QFETCH(QString, text);
    static const QString manual =
        content(PROJECT_FOLDER "/docs/manual.md").simplified(); // a line ends anywhere
    QVERIFY(manual.contains(text));
}

void TestDocumentation::linksLeadToFilesAndHeadings_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<QString>("target");
    static const QRegularExpression link("\\]\\(([^)]+)\\)");
    QStringList pages{"README.md", "CONTRIBUTING.md", "CHANGELOG.md"};
    const QStringList names = QDir(PROJECT_FOLDER "/docs").entryList({"*.md"});
    for (const QString &name : names)
        pages += "docs/" + name;
    for (const QString &page : std::as_const(pages)) {
        auto links = link.globalMatch(content(PROJECT_FOLDER "/" + page));
        while (links.hasNext()) {
            const QString target = links.next().captured(1);
            if (!target.startsWith("http"))
                QTest::addRow("%s: %s", qPrintable(page), qPrintable(target)) << page << target;
        }
    }
}

void TestDocumentation::linksLeadToFilesAndHeadings()
{
    QFETCH(QString, page);
    QFETCH(QString, target);
    const QString path = PROJECT_FOLDER "/" + page;
    const QString file = target.section('#', 0, 0);
    const QString linked = file.isEmpty() ? path : QFileInfo(path).dir().filePath(file);
    QVERIFY(QFileInfo::exists(linked));
    const QString anchor = target.section('#', 1);
    QVERIFY(anchor.isEmpty() || anchorsOf(content(linked)).contains(anchor));
}

QTEST_GUILESS_MAIN(TestDocumentation)
#include "tst_documentation.moc"
