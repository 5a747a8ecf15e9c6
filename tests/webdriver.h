// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef WEBDRIVER_H
#define WEBDRIVER_H

#include <QJsonArray>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>

/*! A headless Chromium, controlled by the W3C's WebDriver protocol: JSON over HTTP to Chromium's own driver,
    which ends the browser with this object. What the browser refuses is a warning that says why, and an
    undefined value. */
class WebDriver
{
public:
    WebDriver();
    ~WebDriver();

    /*! False on a machine without Debian's chromium-driver. */
    static bool isInstalled();
    /*! Why there is no browser; empty if there is one. */
    QString error() const { return m_error; }

    void open(const QUrl &url)
    {
        call("POST", "/url",
             {
                 {"url", url.toString()}
        });
    }
    /*! Runs the body of a function in the page; returns what it returns. */
    QJsonValue run(const QString &script, const QJsonArray &arguments = {});
    /*! Whether the first element that \a selector matches shows a reader \a text, or comes to. */
    bool shows(const QString &selector, const QString &text);

    void click(const QString &selector) { call("POST", pathOf(selector) + "/click"); }
    /*! Replaces what is in an input. */
    void fill(const QString &selector, const QString &text);
    /*! Presses keys, one after the other, wherever the focus is; special ones are the protocol's. */
    void press(const QString &keys);
    /*! CSS pixels of the page's viewport. */
    void resize(int width, int height);

private:
    QJsonValue call(const QByteArray &method, const QString &path, const QJsonObject &body = {});
    QString pathOf(const QString &selector);

    QTemporaryDir m_folder; // the home of the browser, and all that it writes
    QProcess m_driver;
    QNetworkAccessManager m_manager;
    QString m_session; // URL of the driver and the session in it
    QString m_error;
};

#endif // WEBDRIVER_H
