// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

// The backend that the benchmarks poll: a process of its own, so that what it spends is not counted.
// Prints its port, then a line for each connection.

#include "replies.h"

#include <QCoreApplication>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTextStream>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace {

QByteArray response(const QByteArray &body)
{
    return "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: "
        + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

/*! Takes the first whole request out of \a buffer and returns its head; empty while there is none. */
QByteArray takeRequest(QByteArray &buffer)
{
    const int headEnd = buffer.indexOf("\r\n\r\n");
    QByteArray head = buffer.left(headEnd);
    const int lengthAt = head.toLower().indexOf("content-length:");
    if (headEnd < 0 || lengthAt < 0)
        return {};
    const int length = head.mid(lengthAt).split('\r').first().mid(int(qstrlen("content-length:"))).toInt();
    if (buffer.size() < headEnd + 4 + length)
        return {};
    buffer.remove(0, headEnd + 4 + length);
    return head;
}

class Backend : public QTcpServer
{
public:
    Backend(int wallboxes, Yard yard)
        : m_groupInfo(response(groupInfoReply(wallboxes)))
    {
        const QVector<QByteArray> replies = valuesReplies(wallboxes, yard);
        for (const QByteArray &reply : replies)
            m_values.append(response(reply));
    }

    void incomingConnection(qintptr descriptor) override
    {
        auto *socket = new QTcpSocket(this);
        socket->setSocketDescriptor(descriptor);
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, socket,
                [this, socket, buffer = QByteArray()]() mutable { serve(socket, buffer); });
        QTextStream(stdout) << "connection\n";
    }

private:
    void serve(QTcpSocket *socket, QByteArray &buffer)
    {
        buffer += socket->readAll();
        // Qt writes a POST's head and body apart and waits for the first to be acknowledged.
        const int yes = 1;
        setsockopt(int(socket->socketDescriptor()), IPPROTO_TCP, TCP_QUICKACK, &yes, sizeof yes);
        while (true) {
            const QByteArray head = takeRequest(buffer);
            if (head.isEmpty())
                break;
            socket->write(head.contains("/get_values/") ? m_values.at(m_polls++ % m_values.size())
                                                        : m_groupInfo);
        }
    }

    const QByteArray m_groupInfo;
    QVector<QByteArray> m_values;
    int m_polls = 0;
};

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const std::optional<Yard> yard = yardNamed(arguments.value(2));
    if (!yard)
        return 2;
    Backend backend(arguments.at(1).toInt(), *yard);
    if (!backend.listen(QHostAddress::LocalHost))
        return 1;
    QTextStream(stdout) << backend.serverPort() << '\n';
    return QCoreApplication::exec();
}
