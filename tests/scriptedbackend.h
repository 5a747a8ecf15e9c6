// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef SCRIPTEDBACKEND_H
#define SCRIPTEDBACKEND_H

#include <QHash>
#include <QJsonObject>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>

/*! An OCPP backend that answers as the test says and remembers every request.

    Without a script it accepts everything: it is online, answers with the wallboxes and values below and
    takes all limits. It is strict about what it is sent: an unknown path, a method other than POST, or an
    unknown or missing member of the body, ends the program with a message that names it. Connections are kept
    alive. It listens on a free port of the loopback interface. */
class ScriptedBackend : public QObject
{
    Q_OBJECT
public:
    enum Operation { Online, GroupInfo, Values, Limits };
    Q_ENUM(Operation)

    struct Request
    {
        Operation operation = Online;
        QByteArray target;                     //!< as on the request line, percent-encoded
        QHash<QByteArray, QByteArray> headers; //!< names in lower case
        QByteArray body;

        QJsonObject json() const;
    };

    ScriptedBackend();

    /*! As a user enters it: "http://127.0.0.1:PORT". */
    QString url() const;
    /*! Refuses connections from now on, and ends the existing ones. */
    void shutDown();
    /*! Listens again after shutDown(), on the same port. */
    void startUp();
    /*! Ends all connections, whether they wait for an answer or for the next request. */
    void closeConnections();

    /*! What the default answers are made of: both by infrastructure id. */
    QJsonObject wallboxes; //!< the group; max_charging_current
    QJsonObject values;    //!< live-value records; all are sent, whichever ids were asked for
    void setWallbox(const QString &infraId, int maxChargingCurrent);

    /*! Answers \a operation in this way until told otherwise. */
    void answer(Operation operation, int status, const QByteArray &body = "{}");
    /*! Sends \a bytes in place of a response, and keeps the connection open. */
    void sendRaw(Operation operation, const QByteArray &bytes);
    /*! Answers \a operation with one of \a bodies after the other, and from the first again. */
    void answerInTurn(Operation operation, const QList<QByteArray> &bodies);
    /*! Sends \a bytes in place of a response, and closes the connection with the same packet. */
    void hangUp(Operation operation, const QByteArray &bytes = {});
    /*! Resets the connection in place of a response. */
    void reset(Operation operation);
    /*! Leaves requests without an answer until release(). */
    void hold(Operation operation);
    void answerNormally(Operation operation) { m_scripts.remove(operation); }

    /*! Answers a held request of \a operation with \a body: the one at \a index, of which 0 is the oldest.
        False if there is none, or if its connection has ended. */
    bool release(Operation operation, const QByteArray &body, int index = 0);
    /*! Gives the default answer to all held requests of \a operation, and to later ones at once. False if none
        was held. */
    bool releaseAll(Operation operation);
    /*! Sends \a bytes in answer to the oldest held request of \a operation, and goes on holding it. */
    bool sendPart(Operation operation, const QByteArray &bytes);

    QList<Request> requests() const { return m_requests; }
    QList<Request> requests(Operation operation) const;
    /*! "limits" of each set-limits request, in order. */
    QList<QJsonObject> limits() const;
    void forgetRequests() { m_requests.clear(); }
    int openConnections() const { return m_server.findChildren<QTcpSocket *>().size(); }

Q_SIGNALS:
    /*! A request has arrived, and is not answered yet. */
    void received(const ScriptedBackend::Request &request);

private:
    using Script = std::function<void(QTcpSocket *)>;

    void accept(QTcpSocket *socket);
    void serve(QTcpSocket *socket, const Request &request);
    QByteArray defaultBody(Operation operation) const;

    QTcpServer m_server;
    QTcpSocket m_reservation;           // keeps the port while the server is shut down
    QHash<Operation, Script> m_scripts; // what happens to a request instead of the default answer
    QHash<Operation, QList<QPointer<QTcpSocket>>> m_held; // children of the server
    QList<Request> m_requests;
};

#endif // SCRIPTEDBACKEND_H
