// SPDX-License-Identifier: MIT
#include "testkit/faketools/faketools.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QVariant>

namespace faketools
{

namespace
{

void writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
}

} // namespace

void setPlan(const QString &mediaPath, const QJsonObject &plan)
{
    writeFile(mediaPath + ".fake.json", QJsonDocument(plan).toJson());
}

void setDefaultPlan(const QString &folder, const QJsonObject &plan)
{
    writeFile(folder + "/default.fake.json", QJsonDocument(plan).toJson());
}

QVector<Call> calls(const QString &mediaPath, const QString &job)
{
    QVector<Call> found;
    QFile file(mediaPath + ".calls");
    if (!file.open(QIODevice::ReadOnly))
        return found; // not called yet

    while (!file.atEnd()) {
        const QJsonObject line = QJsonDocument::fromJson(file.readLine()).object();
        Call call;
        call.tool = line["tool"].toString();
        call.job = line["job"].toString();
        call.stream = line["stream"].toInt(-1);
        call.arguments = line["arguments"].toVariant().toStringList();
        call.timecodeChannel = line["timecodeChannel"].toString(QString());
        call.timecodeRate = line["timecodeRate"].toString(QString());
        call.source = line["source"].toString(QString());
        call.processId = line["processId"].toVariant().toLongLong();
        call.priority = line["priority"].toInt();
        call.oomScore = line["oomScore"].toInt();
        if (job.isEmpty() || call.job == job)
            found += call;
    }
    return found;
}

void openGate(const QString &path)
{
    writeFile(path, {});
}

bool isAlive(qint64 processId)
{
    QFile state(QString("/proc/%1/stat").arg(processId));
    if (!state.open(QIODevice::ReadOnly))
        return false;
    const QByteArray text = state.readAll();
    return !text.isEmpty() && text.mid(text.lastIndexOf(')') + 2, 1) != "Z"; // ended, but not yet collected
}

} // namespace faketools
