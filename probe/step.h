// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef STEP_H
#define STEP_H

#include "mask.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkReply>
#include <QVector>

#include <chrono>

enum Severity {
    Problem, //!< the plugin would not work with this backend, or not with one of its wallboxes
    Warning, //!< it would work, but the installer should check this
};

/*! Something about the backend that the installer should know. */
struct Finding
{
    Severity severity = Problem;
    QString code;    //!< for machines; stays the same when the text is reworded
    QString text;    //!< for people
    QString wallbox; //!< infrastructure id; empty when the finding is about the backend as a whole
};

/*! One step of the check: what was asked, what was answered, and what that means. A plain value type. What it
    shows, such as url, body, reply, details and findings, contains no secret. */
struct Step
{
    enum Stage {
        Url,
        OnlineCheck,
        GroupInfo,
        LiveValues,
        ChargeLimit,
    };

    /*! Adds a finding. In \a text, %1 and so on stand for \a quotes: what the backend said or the user
        entered. */
    void problem(const char *code, const char *text, const QStringList &quotes = {});
    void warning(const char *code, const char *text, const QStringList &quotes = {});
    /*! Adds \a text to the last finding. */
    Step &extend(const char *text);
    /*! Adds a line about what the plugin reads. */
    void detail(const QString &text) { details.append(mask.quoted(text)); }

    /*! Whether the plugin would read the reply: all it requires is an end without error. */
    bool succeeded() const { return !timedOut && error == QNetworkReply::NoError; }
    /*! Whether the reply is a redirect. The plugin follows none, but would read JSON in it. */
    bool isRedirect() const { return status / 100 == 3 && !json.isObject(); }

    Stage stage = Url;
    Mask mask;
    QString skipped; //!< why the step was skipped; empty if it was not

    // The request. A step without one has an empty URL.
    QString url;
    QJsonObject body; //!< without the secret

    // The answer.
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
    QString errorText;       //!< Qt's description of the error
    int status = 0;          //!< of HTTP; 0 without any response
    QString redirect;        //!< the target of a 3xx status
    QJsonDocument json;      //!< the body, even beside an error; null if it is not JSON
    QJsonParseError notJson; //!< why it is null
    QString reply;           //!< the body to be shown
    bool setsCookie = false;
    bool timedOut = false;         //!< the probe gave up waiting; there is no answer
    bool speaksTls = false;        //!< at the backend's port; examined only if the failure may be due to TLS
    QStringList certificateErrors; //!< why the certificate that was found there is not trusted
    std::chrono::milliseconds duration{0};

    // The outcome.
    QStringList details;
    QVector<Finding> findings;
    QString wallbox; //!< the infrastructure id that the next findings are about; empty for the backend
};

using Report = QVector<Step>;

#endif // STEP_H
