// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QTcpServer>
#include <QUrl>

class QTcpSocket;

/// A web server on a free port of this machine that gives one prepared answer to every request.
class HttpServer : public QTcpServer
{
    Q_OBJECT

public:
    explicit HttpServer(QObject *parent = nullptr);

    QUrl url() const; ///< of the version descriptor on this server

    /// The answer: \a status ("200 OK"), \a body and further header \a lines, each with its line end.
    void answer(const QByteArray &status, const QByteArray &body, const QByteArray &lines = {});
    /// The body is announced with its length, but the connection is cut after \a bytes of it.
    void cutBodyAfter(int bytes) { cutAfter = bytes; }
    /// Requests are taken and never answered.
    void neverAnswer() { silent = true; }
    /// The body goes on with blanks up to \a bytes, sent as fast as they are taken.
    void stretchBodyTo(qint64 bytes) { stretchedBody = bytes; }

    int requestCount() const { return requests; }
    QByteArray lastRequest() const { return request; } ///< its head, as it came
    qint64 sentBytes() const { return sent; }          ///< of stretched bodies
    int openConnections() const { return open; }

private slots:
    void onNewConnection();

private:
    void onReadyRead(QTcpSocket *socket);
    void sendAnswer(QTcpSocket *socket);
    void sendMore(QTcpSocket *socket);

    QByteArray head;
    QByteArray body;
    QByteArray request;
    qint64 stretchedBody = 0; ///< [bytes]; 0 = the body as it is
    qint64 sent = 0;          ///< [bytes]
    int cutAfter = -1;        ///< [bytes]; -1 = whole
    int requests = 0;
    int open = 0;
    bool silent = false;
};
