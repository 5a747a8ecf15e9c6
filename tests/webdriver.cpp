// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "webdriver.h"

#include "json.h"
#include "waiting.h"

#include <QJsonArray>
#include <QNetworkReply>
#include <QRegularExpression>

WebDriver::WebDriver()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"HOME", "TMPDIR", "XDG_CACHE_HOME", "XDG_CONFIG_HOME"})
        environment.insert(name, m_folder.path());
    m_driver.setProcessEnvironment(environment);
    m_driver.start("chromedriver", {"--port=0"});
    if (!m_driver.waitForStarted()) {
        m_error = "there is no chromedriver: install Debian's chromium and chromium-driver to test the page";
        return;
    }
    static const QRegularExpression ready("started successfully on port (\\d+)");
    QString output;
    if (!waitFor([&] {
            output += QString::fromUtf8(m_driver.readAllStandardOutput());
            return ready.match(output).hasMatch() || m_driver.state() == QProcess::NotRunning;
        }))
        m_driver.kill();
    m_session = "http://127.0.0.1:" + ready.match(output).captured(1);
    const QJsonObject options = json(R"({"alwaysMatch": {"goog:chromeOptions": {"args": ["--headless",
        "--no-sandbox", "--disable-gpu", "--disable-quic", "--disable-component-update"]}}})");
    const QJsonObject body{
        {"capabilities", options}
    };
    const QJsonValue session = call("POST", "/session", body);
    if (!m_error.isEmpty())
        m_error.prepend("chromedriver starts no browser: ");
    m_session += "/session/" + session["sessionId"].toString();
}

WebDriver::~WebDriver()
{
    call("DELETE", {});
    m_driver.terminate();
    m_driver.waitForFinished();
    // The browser's processes may still be writing.
    if (!waitFor([this] { return m_folder.remove(); }))
        qWarning("%s remains", qPrintable(m_folder.path()));
}

void WebDriver::open(const QString &url)
{
    const QJsonObject body{
        {"url", url}
    };
    call("POST", "/url", body);
}

void WebDriver::click(const QString &selector)
{
    call("POST", pathOf("at('" + selector + "')") + "/click");
}

void WebDriver::press(const QString &keys)
{
    const QJsonObject body{
        {"text", keys}
    };
    call("POST", pathOf("document.activeElement") + "/value", body);
}

void WebDriver::resize(int width)
{
    QJsonObject body = json(R"({"cmd": "Emulation.setDeviceMetricsOverride"})");
    body["params"] = QJsonObject{
        {"width",             width},
        {"height",            900  },
        {"deviceScaleFactor", 1    },
        {"mobile",            false}
    };
    call("POST", "/goog/cdp/execute", body);
}

QJsonValue WebDriver::run(const QString &script)
{
    const QString names = "const at = selector => document.querySelector(selector);"
                          "const text = selector => at(selector)?.innerText ?? '';";
    const QJsonObject body{
        {"script", names + script},
        {"args",   QJsonArray()  }
    };
    return call("POST", "/execute/sync", body);
}

void WebDriver::wait(const QString &expression, const QString &details)
{
    // An element of the page may not be there yet, or no longer.
    const QString condition = QString("(() => { try { return %1 } catch (error) { "
                                      "if (error instanceof TypeError) return false; throw error } })()")
                                  .arg(expression);
    const bool done = waitFor([&] { return value(condition).toBool() || !m_error.isEmpty(); });
    if (!done)
        m_error = expression + " is not true; now: " + value(details).toVariant().toString();
}

QJsonValue WebDriver::call(const QByteArray &method, const QString &path, const QJsonObject &body)
{
    QNetworkRequest request(QUrl(m_session + path));
    request.setHeader(QNetworkRequest::ContentTypeHeader, "application/json");
    const QByteArray content = method == "POST" ? QJsonDocument(body).toJson() : QByteArray();
    QNetworkReply *reply = m_manager.sendCustomRequest(request, method, content); // the manager's
    const bool done = waitFor([reply] { return reply->isFinished(); });
    reply->deleteLater();
    const QJsonValue value = QJsonDocument::fromJson(reply->readAll())["value"];
    if ((!done || reply->error() != QNetworkReply::NoError) && m_error.isEmpty())
        m_error = path + ": " + reply->errorString() + ' ' + value["message"].toString().section('\n', 0, 0);
    return value;
}

/*! The path of the element that a JavaScript \a expression stands for. */
QString WebDriver::pathOf(const QString &expression)
{
    return "/element/" + value(expression).toObject().begin().value().toString(); // its key is the protocol's
}
