// SPDX-License-Identifier: MIT
#include "tests/update/httpserver.h"

#include <QTcpSocket>

HttpServer::HttpServer(QObject *parent) : QTcpServer(parent)
{
    connect(this, &QTcpServer::newConnection, this, &HttpServer::onNewConnection);
    if (!listen(QHostAddress::LocalHost))
        qFatal("no free port");
}

QUrl HttpServer::url() const
{
    return QUrl(QString("http://127.0.0.1:%1/qvt_timecodetool_appinfo_win.xml").arg(serverPort()));
}

void HttpServer::answer(const QByteArray &status, const QByteArray &answerBody, const QByteArray &lines)
{
    head = "HTTP/1.1 " + status + "\r\n" + lines;
    body = answerBody;
}

void HttpServer::onNewConnection()
{
    QTcpSocket *socket = nextPendingConnection();
    ++open;
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] { onReadyRead(socket); });
    connect(socket, &QTcpSocket::disconnected, this, [this] { --open; });
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
}

void HttpServer::onReadyRead(QTcpSocket *socket)
{
    request += socket->readAll();
    if (!request.endsWith("\r\n\r\n"))
        return;
    ++requests;
    if (!silent)
        sendAnswer(socket);
}

void HttpServer::sendAnswer(QTcpSocket *socket)
{
    const qint64 length = qMax(stretchedBody, static_cast<qint64>(body.size()));
    socket->write(head + "Content-Length: " + QByteArray::number(length) + "\r\nConnection: close\r\n\r\n");
    socket->write(cutAfter < 0 ? body : body.left(cutAfter));
    sent = body.size();
    if (stretchedBody > 0) {
        connect(socket, &QTcpSocket::bytesWritten, this, [this, socket] { sendMore(socket); });
        return;
    }
    socket->disconnectFromHost();
}

void HttpServer::sendMore(QTcpSocket *socket)
{
    constexpr int chunk = 64 * 1024; // [bytes]
    if (socket->bytesToWrite() > 0)
        return;
    if (sent >= stretchedBody) {
        socket->disconnectFromHost();
        return;
    }
    sent += socket->write(QByteArray(chunk, ' '));
}
