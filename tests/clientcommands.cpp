// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "clientcommands.h"

#include "json.h"

ClientCommands::ClientCommands(const Print &print)
{
    const auto compact = [](const QJsonObject &object) {
        return QString(QJsonDocument(object).toJson(QJsonDocument::Compact));
    };
    connect(&m_handler, &NetworkHandler::daemonReachable, this,
            [print](bool state) { print(QString("reachable %1").arg(state)); });
    connect(&m_handler, &NetworkHandler::infraInfoReceived, this,
            [=](const QJsonObject &evseIds) { print("group " + compact(evseIds)); });
    connect(&m_handler, &NetworkHandler::valuesReceived, this,
            [=](const QJsonObject &values) { print("values " + compact(values)); });
    connect(&m_handler, &NetworkHandler::evseIsOnline, this,
            [print](const QString &device) { print("online " + device); });
    connect(&m_handler, &NetworkHandler::ocppDaemonStatus, this,
            [print](bool state) { print(QString("backend %1").arg(state)); });
}

void ClientCommands::run(const QStringList &words)
{
    QJsonObject limits = json(R"({"a": {"value": 16, "unit": "A"}})");
    if (words[0] == "aim")
        m_handler.setServerInfo(words.at(1), words.at(2), words.at(3));
    else if (words[0] == "online")
        m_handler.isOnline();
    else if (words[0] == "group")
        m_handler.getConnectedInfra();
    else if (words[0] == "values")
        m_handler.getEvseValues({"a", "b"});
    else if (words[0] == "limits")
        m_handler.setProfileChargePowerLimit(limits);
    else
        qFatal("There is no client command \"%s\".", qPrintable(words[0]));
}
