// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include <QCoreApplication>
#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTextStream>

namespace {

/*! The reply as one line: the status and the body, or the error when there is no status. */
QString send(QNetworkAccessManager &network, QNetworkRequest request, const QString &line)
{
    const QString method = line.section(' ', 0, 0);
    const QString body = line.section(' ', 2);
    request.setUrl(QUrl(request.url().toString() + line.section(' ', 1, 1)));
    if (!body.isEmpty() && !request.hasRawHeader("Content-Type"))
        request.setRawHeader("Content-Type", "application/json");
    QNetworkReply *reply = network.sendCustomRequest(request, method.toUtf8(), body.toUtf8());
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    reply->deleteLater();
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status == 0)
        return "error " + reply->errorString();
    const QString text = QString::fromUtf8(reply->readAll()).trimmed();
    return QString("%1 %2").arg(status).arg(text.split('\n').join("\\n")).trimmed();
}

} // namespace

/*! http URL: sends each line "METHOD PATH [BODY]" of standard input as a request to the server at URL and prints
    the reply as one line. Lines "Name: value" before it are headers of the next request. */
int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QUrl url(app.arguments().value(1));
    QNetworkAccessManager network;
    QNetworkRequest request(url);
    QTextStream in(stdin);
    QTextStream out(stdout);
    in.setCodec("UTF-8");
    out.setCodec("UTF-8");
    for (QString line; in.readLineInto(&line);) {
        if (line.section(' ', 0, 0).endsWith(':')) {
            request.setRawHeader(line.section(": ", 0, 0).toUtf8(), line.section(": ", 1).toUtf8());
            continue;
        }
        out << send(network, request, line) << '\n' << Qt::flush;
        request = QNetworkRequest(url);
    }
    return 0;
}
