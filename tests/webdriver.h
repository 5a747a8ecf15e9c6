// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef WEBDRIVER_H
#define WEBDRIVER_H

#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QProcess>
#include <QTemporaryDir>

/*! A headless Chromium, controlled by the W3C's WebDriver protocol: JSON over HTTP to Chromium's own driver,
    which ends the browser with this object. */
class WebDriver
{
public:
    WebDriver();
    ~WebDriver();

    /*! The first thing that went wrong; empty if nothing did. */
    QString error() const { return m_error; }

    void open(const QString &url);
    /*! Clicks what a user could click: what is hidden or covered is an error. */
    void click(const QString &selector);
    /*! Presses keys, one after the other, wherever the focus is; special keys have the protocol's codes. */
    void press(const QString &keys);
    /*! The width of the page's viewport, in CSS pixels. */
    void resize(int width);
    /*! Runs the body of a JavaScript function in the page; returns what it returns. There at(selector) is the
        first element that matches, and text(selector) what a reader sees of it. */
    QJsonValue run(const QString &script);
    QJsonValue value(const QString &expression) { return run("return " + expression); }
    /*! Waits until \a expression is true. If it does not become true in time, the error contains the
        value of \a details. */
    void wait(const QString &expression, const QString &details);

private:
    QJsonValue call(const QByteArray &method, const QString &path, const QJsonObject &body = {});
    QString pathOf(const QString &expression);

    QTemporaryDir m_folder; // the home of the browser, and all that it writes
    QProcess m_driver;
    QNetworkAccessManager m_manager;
    QString m_session; // URL of the driver and the session in it
    QString m_error;
};

#endif // WEBDRIVER_H
