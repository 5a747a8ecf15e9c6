// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "livetable.h"

#include "printable.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace {

constexpr struct
{
    const char *title;
    const char *unit;
    int width;      // for the name and the bar the least
    bool isNumber;  // to the right
    int importance; // the least important column goes first where there is no room
} columns[] = {
    {"Wallbox",    "",           7,  false, 9},
    {"OCPP state", "",           13, false, 8},
    {"Car",        "",           8,  false, 4},
    {"",           "",           6,  false, 3},
    {"Current",    "A of limit", 10, true,  7},
    {"Power",      "kW",         6,  true,  6},
    {"Session",    "kWh",        7,  true,  5},
    {"Total",      "kWh",        8,  true,  1},
    {"Age",        "",           3,  true,  2},
};
constexpr int columnCount = std::size(columns);
constexpr int nameColumn = 0;
constexpr int stateColumn = 1;
constexpr int barColumn = 3;
constexpr int mostForName = 28;
constexpr int mostForBar = 20;

using Widths = std::array<int, columnCount>; // 0: the column is left out

int usedWidth(const Widths &widths)
{
    int used = -1; // one blank between columns
    for (const int width : widths)
        used += width == 0 ? 0 : width + 1;
    return used;
}

Widths widthsFor(int screenWidth)
{
    Widths widths;
    for (int i = 0; i < columnCount; ++i)
        widths[i] = columns[i].width;
    for (int importance = 1; usedWidth(widths) > screenWidth && importance < columnCount; ++importance) {
        for (int i = 0; i < columnCount; ++i)
            widths[i] = columns[i].importance == importance ? 0 : widths[i];
    }
    int spare = std::max(0, screenWidth - usedWidth(widths));
    const int forName = std::min(spare, mostForName - widths[nameColumn]);
    widths[nameColumn] += forName;
    if (widths[barColumn] > 0)
        widths[barColumn] += std::min(spare - forName, mostForBar - widths[barColumn]);
    return widths;
}

QString fitted(const QString &text, int width, const TableStyle &style)
{
    if (text.size() <= width)
        return text;
    return text.left(width - 1) + (style.unicode ? QChar(0x2026) : QLatin1Char('~'));
}

/*! Lays \a cells out; \a colour is an ANSI code for the state's cell, empty for none. */
QString line(const QStringList &cells, const Widths &widths, const TableStyle &style,
             const QString &colour = QString())
{
    QStringList parts;
    for (int i = 0; i < columnCount; ++i) {
        if (widths[i] == 0)
            continue;
        const QString cell = fitted(cells.value(i), widths[i], style);
        QString part = columns[i].isNumber ? cell.rightJustified(widths[i]) : cell.leftJustified(widths[i]);
        if (i == stateColumn && !colour.isEmpty())
            part = QStringLiteral("\x1b[%1m%2\x1b[0m").arg(colour, part);
        parts.append(part);
    }
    QString result = parts.join(QLatin1Char(' '));
    while (result.endsWith(QLatin1Char(' ')))
        result.chop(1);
    return result;
}

bool isOn(const Thing *wallbox, const char *state)
{
    return wallbox->stateValue(QLatin1String(state)).toBool();
}

double number(const Thing *wallbox, const char *state)
{
    return wallbox->stateValue(QLatin1String(state)).toDouble();
}

/*! In A, of the phase that carries most. */
double current(const Thing *wallbox)
{
    return std::max({number(wallbox, "currentPhaseA"), number(wallbox, "currentPhaseB"),
                     number(wallbox, "currentPhaseC")});
}

QString decimals(double value, int count)
{
    return QString::number(value, 'f', count);
}

QString stateText(const Thing *wallbox)
{
    return isOn(wallbox, "connected") ? printable(wallbox->stateValue(QStringLiteral("state")).toString())
                                      : QStringLiteral("not connected");
}

QString carText(const Thing *wallbox)
{
    if (isOn(wallbox, "charging"))
        return QStringLiteral("charging");
    return isOn(wallbox, "pluggedIn") ? QStringLiteral("plugged") : QStringLiteral("-");
}

QString bar(const Thing *wallbox, int width, bool unicode)
{
    const double limit = number(wallbox, "maxChargingCurrent");
    const double share = limit > 0 ? std::clamp(current(wallbox) / limit, 0.0, 1.0) : 0.0;
    const int full = qRound(share * width);
    const QChar fullSign = unicode ? QChar(0x2588) : QLatin1Char('#');
    const QChar emptySign = unicode ? QChar(0x2591) : QLatin1Char('.');
    return QString(full, fullSign) + QString(width - full, emptySign);
}

QString currentText(const Thing *wallbox)
{
    const QString limit =
        isOn(wallbox, "power") ? decimals(number(wallbox, "maxChargingCurrent"), 0) : QStringLiteral("off");
    return QStringLiteral("%1/%2").arg(decimals(current(wallbox), 1), limit);
}

QString ageText(qint64 timestamp, qint64 now)
{
    if (timestamp == 0)
        return QStringLiteral("-"); // there are no values yet
    const qint64 age = std::max<qint64>(0, now - timestamp);
    constexpr std::pair<qint64, char> units[] = {
        {86400, 'd'},
        {3600,  'h'},
        {60,    'm'}
    };
    for (const auto &[seconds, sign] : units) {
        if (age >= 2 * seconds)
            return QString::number(std::min<qint64>(99, age / seconds)) + QLatin1Char(sign);
    }
    return QString::number(std::min<qint64>(99, age)) + QLatin1Char('s');
}

QString stateColour(const QString &state)
{
    constexpr std::pair<const char *, const char *> colours[] = {
        {"Charging",      "32"  },
        {"Preparing",     "33"  },
        {"SuspendedEV",   "33"  },
        {"SuspendedEVSE", "33"  },
        {"Finishing",     "33"  },
        {"Faulted",       "1;31"},
        {"Reserved",      "36"  },
        {"Available",     "36"  }
    };
    for (const auto &[name, colour] : colours) {
        if (state == QLatin1String(name))
            return QLatin1String(colour);
    }
    return QStringLiteral("2");
}

QString wallboxLine(const Thing *wallbox, const Widths &widths, const TableStyle &style, qint64 now)
{
    const QStringList cells{printable(wallbox->name()),
                            stateText(wallbox),
                            carText(wallbox),
                            bar(wallbox, widths[barColumn], style.unicode),
                            currentText(wallbox),
                            decimals(number(wallbox, "currentPower") / 1000, 2),
                            decimals(number(wallbox, "sessionEnergy"), 2),
                            decimals(number(wallbox, "totalEnergyConsumed"), 1),
                            ageText(wallbox->stateValue(QStringLiteral("timestamp")).toLongLong(), now)};
    return line(cells, widths, style, style.colour ? stateColour(stateText(wallbox)) : QString());
}

double sum(const Things &wallboxes, const char *state)
{
    double result = 0;
    for (const Thing *wallbox : wallboxes)
        result += number(wallbox, state);
    return result;
}

QString totalLine(const Things &wallboxes, const Widths &widths, const TableStyle &style)
{
    const auto charging = std::count_if(wallboxes.cbegin(), wallboxes.cend(),
                                        [](const Thing *wallbox) { return isOn(wallbox, "charging"); });
    const QStringList cells{QStringLiteral("Total"),
                            QStringLiteral("%1 of %2").arg(charging).arg(wallboxes.size()),
                            QStringLiteral("charging"),
                            QString(),
                            QString(),
                            decimals(sum(wallboxes, "currentPower") / 1000, 2),
                            decimals(sum(wallboxes, "sessionEnergy"), 2),
                            decimals(sum(wallboxes, "totalEnergyConsumed"), 1)};
    return line(cells, widths, style);
}

} // namespace

QStringList liveTable(const Things &wallboxes, const TableStyle &style, qint64 now)
{
    const Widths widths = widthsFor(style.width);
    QStringList titles;
    QStringList units;
    for (const auto &column : columns) {
        titles.append(QLatin1String(column.title));
        units.append(QLatin1String(column.unit));
    }
    QStringList lines{line(titles, widths, style), line(units, widths, style)};
    const QList<Thing *> shown = wallboxes.mid(0, style.maxRows);
    for (const Thing *wallbox : shown)
        lines.append(wallboxLine(wallbox, widths, style, now));
    if (wallboxes.size() > style.maxRows)
        lines.append(QStringLiteral("and %1 more; a taller window shows them")
                         .arg(wallboxes.size() - style.maxRows)
                         .left(style.width));
    lines.append(totalLine(wallboxes, widths, style));
    return lines;
}
