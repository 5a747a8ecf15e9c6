// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef TRANSPORT_H
#define TRANSPORT_H

#include "finding.h"

#include <QByteArray>
#include <QNetworkReply>
#include <QString>

#include <chrono>

/*! What the probe goes through, in this order. */
enum class Step {
    Url,
    OnlineCheck,
    GroupInfo,
    LiveValues,
    ChargeLimit,
};

/*! How much of a reply the probe reads before it cancels the request; a full group's takes a few kB. */
constexpr qint64 longestReply = qint64(64) << 20; // bytes

/*! How one request ended. */
struct Answer
{
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
    QString errorText; //!< Qt's words for error; empty without one
    int status = 0;    //!< of HTTP; 0 without any response
    QString redirect;  //!< where a 3xx status points to
    QByteArray body;   //!< as received, even beside an error
    bool setsCookie = false;
    std::chrono::milliseconds duration{0};
    bool timedOut = false; //!< given up by the probe; all but duration is then empty

    /*! Whether the plugin would read the body: it asks for no more than an end without error. */
    bool succeeded() const { return !timedOut && error == QNetworkReply::NoError; }
};

/*! What is wrong with \a url as the user would enter it in nymea. */
Findings judgeUrl(const QString &url);

/*! What \a answer to \a step shows short of its content: whether and when the backend answered. The plugin
    does without the online check, so that a failure there is a remark unless nothing can get through. */
Findings judgeAnswer(Step step, const Answer &answer);

/*! Whether \a answer has a body that is worth judging: the plugin would read it, and it is no redirect. */
bool hasContent(const Answer &answer);

/*! Whether the error of \a answer will meet every other request as well. */
bool isUnreachable(const Answer &answer);

#endif // TRANSPORT_H
