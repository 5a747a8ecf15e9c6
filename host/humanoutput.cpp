// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "humanoutput.h"

#include "humantext.h"
#include "livetable.h"
#include "printable.h"
#include "values.h"

#include <QDateTime>
#include <QSize>
#include <QTextCodec>

#include <algorithm>
#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr int utf8Mib = 106;

void put(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
    std::fflush(stdout);
}

QSize screenSize()
{
    winsize size = {};
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0)
        return {80, 24};
    return {size.ws_col, size.ws_row};
}

} // namespace

HumanOutput::HumanOutput()
    : m_isTerminal(::isatty(STDOUT_FILENO))
    , m_hasPrompt(m_isTerminal && ::isatty(STDIN_FILENO))
{
}

void HumanOutput::awaitCommand()
{
    if (!m_hasPrompt || m_atPrompt)
        return;
    put(QStringLiteral("vela> "));
    m_atPrompt = true;
}

void HumanOutput::commandRead()
{
    m_atPrompt = false;
}

void HumanOutput::refused(const QString &, const QString &reason)
{
    write({QStringLiteral("Error: ") + reason});
}

void HumanOutput::done(const QString &command)
{
    if (command == QLatin1String("watch"))
        m_watching = false;
    m_drawnLines = 0;
}

void HumanOutput::help(const QVector<CommandHelp> &commands)
{
    QVector<QStringList> rows;
    for (const CommandHelp &command : commands)
        rows.append({command.usage, command.summary});
    write(aligned(rows));
}

void HumanOutput::classes(const ThingClasses &classes)
{
    QVector<QStringList> rows;
    for (const ThingClass &thingClass : classes) {
        QStringList params;
        for (const ParamType &type : thingClass.discoveryParamTypes)
            params.append(type.name);
        rows.append(
            {thingClass.name, thingClass.displayName,
             (QStringList(thingClass.createMethods.join(QLatin1Char(','))) + params).join(QLatin1Char(' '))});
    }
    write(aligned(rows));
}

void HumanOutput::discovered(const ThingDiscoveryInfo *info, const ThingClasses &classes)
{
    if (info->status() != Thing::ThingErrorNoError)
        return refused(QString(), errorText(info));
    const ThingDescriptors offers = info->thingDescriptors();
    QVector<QStringList> rows;
    for (int i = 0; i < offers.size(); ++i) {
        const ThingDescriptor &offer = offers.at(i);
        rows.append({QString::number(i + 1), offer.title(), offer.description(),
                     classes.findById(offer.thingClassId()).name,
                     offer.thingId().isNull() ? QStringLiteral("new") : QStringLiteral("exists already")});
    }
    write(offers.isEmpty() ? QStringList(QStringLiteral("Nothing was found.")) : aligned(rows));
}

void HumanOutput::jobDone(const QString &command, const ThingJob *job, const Thing *thing)
{
    if (job->status() != Thing::ThingErrorNoError)
        refused(command, errorText(job));
    else if (thing && command == QLatin1String("set"))
        write({QStringLiteral("Done: %1 %2").arg(thing->name(), mainStates(thing))});
}

void HumanOutput::things(const Things &things)
{
    QVector<QStringList> rows;
    for (const Thing *thing : things)
        rows.append({thing->name(), thing->thingClass().name, setupText(thing), mainStates(thing)});
    write(rows.isEmpty() ? QStringList(QStringLiteral("There are no things yet.")) : aligned(rows));
}

void HumanOutput::thing(const Thing *thing, const Thing *parent)
{
    const ThingClass thingClass = thing->thingClass();
    QString setup = setupText(thing);
    if (!thing->setupDisplayMessage().isEmpty())
        setup += QStringLiteral(": ") + thing->setupDisplayMessage();
    const QVector<QStringList> facts{
        {QStringLiteral("name"),   thing->name()                                   },
        {QStringLiteral("id"),     thing->id().toString(QUuid::WithoutBraces)      },
        {QStringLiteral("class"),  thingClass.name                                 },
        {QStringLiteral("parent"), parent ? parent->name() : QStringLiteral("none")},
        {QStringLiteral("set-up"), setup                                           }
    };
    QVector<QStringList> rows;
    for (const ParamType &type : thingClass.paramTypes)
        rows.append(
            {QStringLiteral("parameter ") + type.name, valueText(thing->paramValue(type.id), type.unit)});
    for (const StateType &type : thingClass.stateTypes) {
        const State state = thing->state(type.id);
        rows.append({QStringLiteral("state ") + type.name, valueText(state.value(), type.unit),
                     limitsText(state, type)});
    }
    write(aligned(facts) + aligned(rows));
}

void HumanOutput::thingAdded(const Thing *thing)
{
    event(QStringLiteral("+ %1 has been added (%2)").arg(thing->name(), thing->thingClass().displayName));
}

void HumanOutput::thingRemoved(const Thing *thing)
{
    event(QStringLiteral("- %1 has been removed").arg(thing->name()));
}

void HumanOutput::setupFinished(const ThingSetupInfo *info)
{
    if (info->status() == Thing::ThingErrorNoError)
        event(QStringLiteral("* %1 is set up").arg(info->thing()->name()));
    else
        event(QStringLiteral("! set-up of %1 has failed: %2").arg(info->thing()->name(), errorText(info)));
}

void HumanOutput::stateChanged(const Thing *thing, const StateType &stateType, const QVariant &value)
{
    const bool isMeasured =
        !stateType.writable && stateType.type != QMetaType::Bool && stateType.type != QMetaType::QString;
    if (!isMeasured)
        event(QStringLiteral("  %1: %2 %3")
                  .arg(thing->name(), stateType.name, valueText(value, stateType.unit)));
}

void HumanOutput::watched(const Things &wallboxes)
{
    if (wallboxes.isEmpty())
        return write({QStringLiteral("There are no wallboxes yet.")});
    m_watching = true;
    QVector<LiveRow> rows;
    for (const Thing *wallbox : wallboxes) {
        rows.append(liveRow(wallbox));
        rows.last().name = printable(rows.last().name);
        rows.last().state = printable(rows.last().state);
    }
    TableStyle style;
    style.unicode = QTextCodec::codecForLocale()->mibEnum() == utf8Mib;
    style.colour = m_isTerminal && qEnvironmentVariableIsEmpty("NO_COLOR");
    if (m_isTerminal) {
        const QSize size = screenSize();
        style.width = size.width();
        style.maxRows = std::max(1, size.height() - 6);
    }
    const QStringList lines = liveTable(rows, style, QDateTime::currentSecsSinceEpoch());
    if (!m_isTerminal)
        return put(lines.join(QLatin1Char('\n')) + QLatin1String("\n\n"));
    const QString up = m_drawnLines > 0 ? QStringLiteral("\x1b[%1F").arg(m_drawnLines) : QString();
    put(up + lines.join(QLatin1String("\x1b[K\n")) + QLatin1String("\x1b[K\n\x1b[J"));
    m_drawnLines = lines.size();
}

void HumanOutput::write(const QStringList &lines)
{
    m_watching = false;
    m_drawnLines = 0;
    for (const QString &line : lines)
        put(printable(line) + QLatin1Char('\n'));
}

void HumanOutput::event(const QString &text)
{
    // The table shows it already, and would be torn.
    if (m_watching && m_isTerminal)
        return;
    const bool atPrompt = m_atPrompt;
    m_atPrompt = false;
    put((atPrompt ? QStringLiteral("\r\x1b[K") : QString()) + printable(text) + QLatin1Char('\n'));
    if (atPrompt)
        awaitCommand();
}
