// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef PROBE_H
#define PROBE_H

#include "options.h"
#include "step.h"

#include <QMap>

#include <functional>
#include <memory>

class NetworkHandler;

/*! Talks to a backend with the plugin's client and judges every answer. Unlike the plugin it has a time
    limit, and stops reading a reply that is too long. */
class Probe : public QObject
{
public:
    explicit Probe(const ProbeOptions &options);
    ~Probe() override;

    /*! Takes one step after the other, in an event loop of its own. \a stepDone is called after each. Call
        it once. */
    Report run(const std::function<void(const Step &)> &stepDone);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void checkUrl(Step &step);
    void checkOnline(Step &step);
    void askGroupInfo(Step &step);
    void askValues(Step &step);
    void sendLimit(Step &step);

    bool post(Step &step, const QString &path, const QJsonObject &body = {});
    void connectHandler();

    const ProbeOptions m_options;
    std::unique_ptr<NetworkHandler> m_handler; // replaced to end a request
    QMap<QString, int> m_maxCurrents;          // of the group's wallboxes, in A, once they are known
    QString m_obstacle; // why the remaining steps are skipped; empty while they are not
};

#endif // PROBE_H
