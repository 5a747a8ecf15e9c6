// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#include "fault.h"

QJsonObject Fault::toJson() const
{
    QJsonObject json;
    if (status != 0)
        json.insert(QStringLiteral("status"), status);
    if (delay.count() > 0)
        json.insert(QStringLiteral("delayMs"), int(delay.count()));
    if (garbage)
        json.insert(QStringLiteral("garbage"), true);
    if (silent)
        json.insert(QStringLiteral("silent"), true);
    return json;
}

void FaultGate::setFault(const Fault &fault)
{
    const std::lock_guard lock(m_mutex);
    m_fault = fault;
    m_changed.notify_all();
}

Fault FaultGate::fault() const
{
    const std::lock_guard lock(m_mutex);
    return m_fault;
}

Fault FaultGate::pass()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_isOpen || !m_fault.silent; });
    m_changed.wait_for(lock, m_fault.delay, [this] { return m_isOpen || m_fault.delay.count() == 0; });
    return m_fault;
}

void FaultGate::open()
{
    const std::lock_guard lock(m_mutex);
    m_isOpen = true;
    m_changed.notify_all();
}
