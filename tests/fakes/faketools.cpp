// SPDX-License-Identifier: MIT
#include "tests/fakes/faketools.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QVariant>

namespace faketools
{

namespace
{

void writePlan(const QString &path, const QJsonObject &plan)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(plan).toJson()) < 0)
        qFatal("cannot write %s", qPrintable(path));
}

} // namespace

void setPlan(const QString &mediaPath, const QJsonObject &plan)
{
    writePlan(mediaPath + ".fake.json", plan);
}

void setDefaultPlan(const QString &folder, const QJsonObject &plan)
{
    writePlan(folder + "/default.fake.json", plan);
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
        call.priority = line["priority"].toInt();
        call.oomScore = line["oomScore"].toInt();
        if (job.isEmpty() || call.job == job)
            found += call;
    }
    return found;
}

} // namespace faketools
