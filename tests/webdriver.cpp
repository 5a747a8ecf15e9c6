// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#include "webdriver.h"

#include <QEventLoop>
#include <QJsonDocument>
#include <QNetworkReply>
#include <QRegularExpression>
#include <QStandardPaths>

namespace {
constexpr int patience = 30000; // ms; a first start on a busy machine takes seconds

QJsonObject capabilities(const QString &profile)
{
    const QJsonArray arguments{"--headless",
                               "--no-sandbox",
                               "--disable-gpu",
                               "--disable-quic",
                               "--no-first-run",
                               "--disable-background-networking",
                               "--disable-component-update",
                               "--disable-sync",
                               "--user-data-dir=" + profile};
    const QJsonObject options{
        {"args", arguments}
    };
    const QJsonObject always{
        {"goog:chromeOptions", options}
    };
    return {
        {"capabilities", QJsonObject{{"alwaysMatch", always}}}
    };
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
    call("POST", "/url",
         {
             {"url", url.toString()}
    });
}

QJsonValue WebDriver::run(const QString &script, const QJsonArray &arguments)
{
    return call("POST", "/execute/sync",
                {
                    {"script", script   },
                    {"args",   arguments}
    });
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
    call("POST", path + "/value",
         {
             {"text", text}
    });
}

void WebDriver::press(const QString &keys)
{
    QJsonArray strokes;
    for (const QChar key : keys) {
        strokes.append(QJsonObject{
            {"type",  "keyDown"   },
            {"value", QString(key)}
        });
        strokes.append(QJsonObject{
            {"type",  "keyUp"     },
            {"value", QString(key)}
        });
    }
    const QJsonObject keyboard{
        {"type",    "key"     },
        {"id",      "keyboard"},
        {"actions", strokes   }
    };
    call("POST", "/actions",
         {
             {"actions", QJsonArray{keyboard}}
    });
}

void WebDriver::resize(int width, int height)
{
    const QJsonObject metrics{
        {"width",             width },
        {"height",            height},
        {"deviceScaleFactor", 1     },
        {"mobile",            false }
    };
    call("POST", "/goog/cdp/execute",
         {
             {"cmd",    "Emulation.setDeviceMetricsOverride"},
             {"params", metrics                             }
    });
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
    const QJsonValue element = call("POST", "/element",
                                    {
                                        {"using", "css selector"},
                                        {"value", selector      }
    });
    return "/element/"
        + element.toObject().begin().value().toString(); // its key is a constant of the protocol
}
