// SPDX-License-Identifier: MIT
#include "update/updatecheck.h"

#include "app/records/applicationinfo.h"
#include "update/versiondescriptor.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSysInfo>

// Built before main runs and never written afterwards. clazy:exclude=non-pod-global-static
const QUrl updateDescriptorUrl("http://" OSTREL_UPDATE_HOST "/qvt_timecodetool_appinfo_win.xml");

namespace
{

constexpr qint64 longestDescriptor = qint64{1024} * 1024; // [bytes] a real one has a few hundred

QString userAgent()
{
    return QString("%1 V%2.%3 %4 (%5)")
        .arg(applicationTitle, QString::number(applicationMajorVersion),
             QString::number(applicationMinorVersion), QSysInfo::prettyProductName(),
             QSysInfo::currentCpuArchitecture());
}

} // namespace

UpdateCheck::UpdateCheck(QObject *parent, QUrl descriptorUrl)
    : QObject(parent),
      networkManager(new QNetworkAccessManager(this)),
      descriptorUrl(std::move(descriptorUrl))
{
}

void UpdateCheck::requestVersionInfo()
{
    connect(networkManager, &QNetworkAccessManager::finished, this, &UpdateCheck::replyFinished);
    QNetworkRequest request(descriptorUrl);
    request.setRawHeader("User-Agent", userAgent().toLatin1());
    // Qt 6 would follow a redirection, Qt 5 does not.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    // A compressed body could unfold to any size behind the limit's back.
    request.setRawHeader("Accept-Encoding", "identity");
    QNetworkReply *reply = networkManager->get(request);
    connect(reply, &QNetworkReply::readyRead, reply, [reply] {
        if (reply->bytesAvailable() > longestDescriptor)
            reply->abort();
    });
}

void UpdateCheck::replyFinished(QNetworkReply *reply)
{
    if (reply->error() != QNetworkReply::NoError)
        return;
    if (const auto descriptor = readVersionDescriptor(reply->readAll())) {
        emit currentVersionInfo(descriptor->majorVersion, descriptor->minorVersion, descriptor->description,
                                descriptor->downloadLink);
    }
}
