// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "webdriver.h"

#include "json.h"

#include <QEventLoop>
#include <QNetworkReply>
#include <QRegularExpression>
#include <QStandardPaths>

namespace {
constexpr int patience = 60000; // ms; a first start on a busy machine takes seconds

QJsonObject member(const QString &name, const QJsonValue &value)
{
    QJsonObject object;
    object.insert(name, value);
    return object;
}

QJsonObject capabilities(const QString &profile)
{
    QJsonArray arguments{"--headless",
                         "--no-sandbox",
                         "--disable-gpu",
                         "--disable-quic",
                         "--no-first-run",
                         "--disable-background-networking",
                         "--disable-component-update",
                         "--disable-sync"};
    arguments.append("--user-data-dir=" + profile);
    const QJsonObject options = member("goog:chromeOptions", member("args", arguments));
    return member("capabilities", member("alwaysMatch", options));
}

QString driverUrl(QProcess &driver)
{
    static const QRegularExpression ready("started successfully on port (\\d+)");
    QString output;
    QRegularExpressionMatch match;
    while (!match.hasMatch() && driver.waitForReadyRead(patience)) {
        output += QString::fromUtf8(driver.readAllStandardOutput());
        match = ready.match(output);
    }
    return "http://127.0.0.1:" + match.captured(1);
}
} // namespace

WebDriver::WebDriver()
{
    m_driver.start("chromedriver", {"--port=0"});
    m_session = driverUrl(m_driver);
    const QJsonValue session = call("POST", "/session", capabilities(m_profile.path()));
    m_session += "/session/" + session["sessionId"].toString();
}

WebDriver::~WebDriver()
{
    call("DELETE", {});
    m_driver.terminate();
    m_driver.waitForFinished(patience);
}

bool WebDriver::isInstalled()
{
    return !QStandardPaths::findExecutable("chromedriver").isEmpty();
}

void WebDriver::open(const QUrl &url)
{
    call("POST", "/url", member("url", url.toString()));
}

QJsonValue WebDriver::run(const QString &script, const QJsonArray &arguments)
{
    QJsonObject body = member("script", script);
    body.insert("args", arguments);
    return call("POST", "/execute/sync", body);
}

QString WebDriver::text(const QString &selector)
{
    return run("return document.querySelector(arguments[0])?.innerText ?? ''", {selector}).toString();
}

void WebDriver::click(const QString &selector)
{
    call("POST", pathOf(selector) + "/click");
}

void WebDriver::fill(const QString &selector, const QString &text)
{
    const QString path = pathOf(selector);
    call("POST", path + "/clear");
    call("POST", path + "/value", member("text", text));
}

void WebDriver::press(const QString &keys)
{
    QStringList strokes;
    for (const QChar key : keys)
        strokes.append(
            QString(R"({"type": "keyDown", "value": "%1"}, {"type": "keyUp", "value": "%1"})").arg(key));
    call("POST", "/actions",
         json(QString(R"({"actions": [{"type": "key", "id": "keyboard", "actions": [%1]}]})")
                  .arg(strokes.join(','))
                  .toUtf8()));
}

void WebDriver::resize(int width, int height)
{
    const QString metrics = R"({"width": %1, "height": %2, "deviceScaleFactor": 1, "mobile": false})";
    call("POST", "/goog/cdp/execute",
         json(R"({"cmd": "Emulation.setDeviceMetricsOverride", "params": )"
              + metrics.arg(width).arg(height).toUtf8() + '}'));
}

QJsonValue WebDriver::call(const QByteArray &method, const QString &path, const QJsonObject &body)
{
    QNetworkRequest request(QUrl(m_session + path));
    request.setHeader(QNetworkRequest::ContentTypeHeader, "application/json");
    request.setTransferTimeout(patience);
    const QByteArray content = method == "POST" ? QJsonDocument(body).toJson() : QByteArray();
    QNetworkReply *reply = m_manager.sendCustomRequest(request, method, content); // the manager's
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    reply->deleteLater();
    QJsonValue value = QJsonDocument::fromJson(reply->readAll()).object().value("value");
    if (reply->error() == QNetworkReply::NoError)
        return value;
    qWarning("WebDriver: %s: %s %s", qPrintable(path), qPrintable(reply->errorString()),
             qPrintable(value["message"].toString().section('\n', 0, 0)));
    return QJsonValue::Undefined;
}

QString WebDriver::pathOf(const QString &selector)
{
    QJsonObject search = member("using", "css selector");
    search.insert("value", selector);
    const QJsonValue element = call("POST", "/element", search);
    return "/element/"
        + element.toObject().begin().value().toString(); // its key is a constant of the protocol
}
