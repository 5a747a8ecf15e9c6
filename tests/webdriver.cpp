// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "webdriver.h"

#include "json.h"
#include "waiting.h"

#include <QNetworkReply>
#include <QRegularExpression>
#include <QStandardPaths>

WebDriver::WebDriver()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"HOME", "TMPDIR", "XDG_CACHE_HOME", "XDG_CONFIG_HOME"})
        environment.insert(name, m_folder.path());
    m_driver.setProcessEnvironment(environment);
    m_driver.start("chromedriver", {"--port=0"});
    static const QRegularExpression ready("started successfully on port (\\d+)");
    QString output;
    if (!waitFor([&] {
            output += QString::fromUtf8(m_driver.readAllStandardOutput());
            return ready.match(output).hasMatch() || m_driver.state() == QProcess::NotRunning;
        }))
        m_driver.kill();
    m_session = "http://127.0.0.1:" + ready.match(output).captured(1);
    const QJsonArray arguments{"--headless",
                               "--no-sandbox",
                               "--disable-gpu",
                               "--disable-quic",
                               "--no-first-run",
                               "--disable-background-networking",
                               "--disable-component-update",
                               "--disable-sync",
                               "--user-data-dir=" + m_folder.filePath("profile")};
    const QJsonObject options{
        {"goog:chromeOptions", QJsonObject{{"args", arguments}}}
    };
    const QJsonValue session = call("POST", "/session",
                                    {
                                        {"capabilities", QJsonObject{{"alwaysMatch", options}}}
    });
    if (session.isUndefined())
        m_error = "chromedriver starts no browser, see the warning above";
    m_session += "/session/" + session["sessionId"].toString();
}

WebDriver::~WebDriver()
{
    if (m_error.isEmpty())
        call("DELETE", {});
    m_driver.terminate();
    m_driver.waitForFinished();
    // The browser's processes may still be writing.
    if (!waitFor([this] { return m_folder.remove(); }))
        qWarning("%s remains", qPrintable(m_folder.path()));
}

bool WebDriver::isInstalled()
{
    return !QStandardPaths::findExecutable("chromedriver").isEmpty();
}

QJsonValue WebDriver::run(const QString &script, const QJsonArray &arguments)
{
    return call("POST", "/execute/sync",
                {
                    {"script", script   },
                    {"args",   arguments}
    });
}

bool WebDriver::shows(const QString &selector, const QString &text)
{
    QString shown;
    const bool done = waitFor([&] {
        shown = run("return document.querySelector(arguments[0])?.innerText ?? ''", {selector}).toString();
        return text.isEmpty() ? shown.isEmpty() : shown.contains(text);
    });
    if (!done)
        qWarning("%s shows: %s", qPrintable(selector), qPrintable(shown));
    return done;
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
    for (const QString &key : keys.split("", Qt::SkipEmptyParts)) {
        strokes.append(QJsonObject{
            {"type",  "keyDown"},
            {"value", key      }
        });
        strokes.append(QJsonObject{
            {"type",  "keyUp"},
            {"value", key    }
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
    const QByteArray content = method == "POST" ? QJsonDocument(body).toJson() : QByteArray();
    QNetworkReply *reply = m_manager.sendCustomRequest(request, method, content); // the manager's
    const bool done = waitFor([reply] { return reply->isFinished(); });
    reply->deleteLater();
    const QJsonValue value = json(reply->readAll()).value("value");
    if (done && reply->error() == QNetworkReply::NoError)
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
    return "/element/" + element.toObject().begin().value().toString(); // its key is the protocol's
}
