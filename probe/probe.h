// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef PROBE_H
#define PROBE_H

#include "groupinfo.h"
#include "mask.h"
#include "report.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <memory>
#include <optional>

class NetworkHandler;

/*! What to check, and how. */
struct ProbeTarget
{
    QString url; //!< as the user would enter it in nymea
    QString groupId;
    QString secret;
    std::optional<LimitRequest> limit;    //!< none: no limit is sent
    std::chrono::milliseconds timeout{0}; //!< for each step
};

/*! Talks to a backend as the plugin does, one request after the other, and judges every answer. Unlike the
    plugin it gives up waiting, so that it ends. */
class Probe : public QObject
{
    Q_OBJECT
public:
    explicit Probe(const ProbeTarget &target);
    ~Probe() override;

    /*! Begins; to be called once. finished() follows, at once where nothing can be asked. */
    void start();

    /*! The steps done so far, free of secrets. */
    const Report &report() const { return m_report; }

Q_SIGNALS:
    /*! A step is done or skipped. \a report is free of secrets. */
    void stepDone(const StepReport &report);
    void finished();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    using Continuation = void (Probe::*)(const StepReport &);

    void checkOnline();
    void afterOnline(const StepReport &report);
    void askGroupInfo();
    void afterGroupInfo(const StepReport &answered);
    void askValues();
    void afterValues(const StepReport &answered);
    void sendLimit();
    void afterLimit(const StepReport &report);

    void connectHandler();
    void post(Step step, const QString &path, QJsonObject body, Continuation next);
    void takeReply(QNetworkReply *reply);
    void giveUp();
    void conclude(const Answer &answer);
    void add(const StepReport &report);
    void skipFrom(Step first, const QString &reason);

    ProbeTarget m_target;
    Mask m_mask;
    std::unique_ptr<NetworkHandler> m_handler; // replaced where it has to forget a request
    QTimer m_timeout;                          // runs while a request is under way, as does the clock
    QElapsedTimer m_clock;
    StepReport m_current;          // the step under way
    Continuation m_next = nullptr; // what its answer goes to
    QJsonObject m_evseIds;         // the group's wallboxes, once known
    Report m_report;
};

#endif // PROBE_H
