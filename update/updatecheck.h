// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>
#include <QUrl>

class QNetworkAccessManager;
class QNetworkReply;

/// Address of the version descriptor on the maker's update host, compiled into the program.
extern const QUrl updateDescriptorUrl;

/// Asks the update host once which version is the newest.
///
/// Lives in the window's thread. Every failure is silent: no network, a server's error, a body that is no
/// descriptor or that goes on for more than a megabyte.
class UpdateCheck : public QObject
{
    Q_OBJECT

public:
    /// The descriptor is asked for at \a descriptorUrl.
    explicit UpdateCheck(QObject *parent, QUrl descriptorUrl = updateDescriptorUrl);

    /// Sends the request. To be called once.
    void requestVersionInfo();

signals:
    /// A usable descriptor has been read; the version need not be newer than this program.
    void currentVersionInfo(uint majorVersion, uint minorVersion, QString description, QUrl downloadLink);

private slots:
    void replyFinished(QNetworkReply *reply);

private:
    QNetworkAccessManager *networkManager; ///< child of this object; owns the reply
    QUrl descriptorUrl;
};
