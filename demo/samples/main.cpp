// SPDX-License-Identifier: MIT
#include "testkit/media/samplekit.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName("ostrel-samples");

    QCommandLineParser parser;
    parser.setApplicationDescription(
        "Writes one small file per recording situation, and a text that says what "
        "the program should show.");
    parser.addHelpOption();
    parser.addPositionalArgument("folder", "A new or empty folder.");
    parser.process(application);

    QString problem = "give one folder; see --help";
    if (parser.positionalArguments().size() == 1)
        problem = mediakit::writeSampleKit(parser.positionalArguments().constFirst());
    if (problem.isEmpty())
        return 0;
    QTextStream(stderr) << "ostrel-samples: " << problem << '\n';
    return 1;
}
