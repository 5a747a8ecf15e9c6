// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "livetable.h"

#include "printable.h"
#include "wallboxes.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace {

/*! A wallbox, and what its cells depend on besides. */
struct Row
{
    const Thing *wallbox;
    bool isManaged; // there has been an action on a wallbox of its gateway
    bool isConnected;
    bool unicode;
    int barWidth;
    qint64 now;
};

QString decimals(double value, int count)
{
    return QString::number(value, 'f', count);
}

/*! A measured value of a wallbox that is not connected says nothing about now. */
QString measured(const Row &row, const QString &text)
{
    return row.isConnected ? text : QStringLiteral("-");
}

/*! In A, of the phase that carries most. */
double current(const Thing *wallbox)
{
    return std::max({number(wallbox, "currentPhaseA"), number(wallbox, "currentPhaseB"),
                     number(wallbox, "currentPhaseC")});
}

QString nameText(const Row &row)
{
    return printable(row.wallbox->name());
}

QString stateText(const Row &row)
{
    return row.isConnected ? printable(row.wallbox->stateValue(QStringLiteral("state")).toString())
                           : QStringLiteral("not connected");
}

/*! Not from the state "pluggedIn": that is true for every wallbox that the backend reports. */
QString carText(const Row &row)
{
    if (isInState(row.wallbox, {"Charging"}))
        return QStringLiteral("charging");
    const bool hasCar = isInState(row.wallbox, {"Preparing", "SuspendedEV", "SuspendedEVSE", "Finishing"});
    return hasCar ? QStringLiteral("plugged") : QStringLiteral("-");
}

QString barText(const Row &row)
{
    const double limit = number(row.wallbox, "maxChargingCurrent");
    const double share =
        row.isConnected && limit > 0 ? std::clamp(current(row.wallbox) / limit, 0.0, 1.0) : 0.0;
    const int full = qRound(share * row.barWidth);
    const QChar fullSign = row.unicode ? QChar(0x2588) : QLatin1Char('#');
    const QChar emptySign = row.unicode ? QChar(0x2591) : QLatin1Char('.');
    return QString(full, fullSign) + QString(row.barWidth - full, emptySign);
}

/*! The current and its limit: "off" for a wallbox that is limited to 0 A, "-" for one that is not limited.
    The plugin limits wallboxes that are not enabled only after an action on one of them, some seconds later. */
QString currentText(const Row &row)
{
    const double ampere = current(row.wallbox);
    QString limit = row.isManaged && ampere == 0 ? QStringLiteral("off") : QStringLiteral("-");
    if (isOn(row.wallbox, "power"))
        limit = decimals(number(row.wallbox, "maxChargingCurrent"), 0);
    return measured(row, decimals(ampere, 1)) + QLatin1Char('/') + limit;
}

QString powerText(const Row &row)
{
    return measured(row, decimals(number(row.wallbox, "currentPower") / 1000, 2));
}

QString sessionText(const Row &row)
{
    return decimals(number(row.wallbox, "sessionEnergy"), 2);
}

QString totalText(const Row &row)
{
    return decimals(number(row.wallbox, "totalEnergyConsumed"), 1);
}

QString ageText(const Row &row)
{
    const qint64 timestamp = row.wallbox->stateValue(QStringLiteral("timestamp")).toLongLong();
    if (timestamp == 0)
        return QStringLiteral("-"); // there are no values yet
    const qint64 age = std::max<qint64>(0, row.now - timestamp);
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

constexpr struct
{
    const char *title;
    const char *unit;
    int width;      // of name and bar: the least
    bool isNumber;  // aligned to the right
    int importance; // the least important column is left out first
    QString (*text)(const Row &row);
} columns[] = {
    {"Wallbox",    "",           7,  false, 9, nameText   },
    {"OCPP state", "",           13, false, 8, stateText  },
    {"Car",        "",           8,  false, 4, carText    },
    {"",           "",           6,  false, 2, barText    },
    {"Current",    "A of limit", 10, true,  7, currentText},
    {"Power",      "kW",         6,  true,  6, powerText  },
    {"Session",    "kWh",        7,  true,  5, sessionText},
    {"Total",      "kWh",        8,  true,  1, totalText  },
    {"Age",        "",           3,  true,  3, ageText    },
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

Widths widthsFor(const Things &wallboxes, int screenWidth)
{
    Widths widths;
    for (int i = 0; i < columnCount; ++i)
        widths[i] = columns[i].width;
    for (int importance = 1; usedWidth(widths) > screenWidth && importance < columnCount; ++importance) {
        for (int i = 0; i < columnCount; ++i)
            widths[i] = columns[i].importance == importance ? 0 : widths[i];
    }
    int longestName = widths[nameColumn];
    for (const Thing *wallbox : wallboxes)
        longestName = std::max(longestName, std::min(wallbox->name().size(), mostForName));
    const int spare = std::max(0, screenWidth - usedWidth(widths));
    const int forName = std::min(spare, longestName - widths[nameColumn]);
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

QString wallboxLine(const Row &row, const Widths &widths, const TableStyle &style)
{
    QStringList cells;
    for (const auto &column : columns)
        cells.append(column.text(row));
    return line(cells, widths, style, style.colour ? stateColour(stateText(row)) : QString());
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
    Things connected;
    std::copy_if(wallboxes.cbegin(), wallboxes.cend(), std::back_inserter(connected),
                 [](const Thing *wallbox) { return isOn(wallbox, "connected"); });
    const auto charging = std::count_if(connected.cbegin(), connected.cend(),
                                        [](const Thing *wallbox) { return isOn(wallbox, "charging"); });
    const QStringList cells{QStringLiteral("Total"),
                            QStringLiteral("%1 of %2").arg(charging).arg(wallboxes.size()),
                            QStringLiteral("charging"),
                            QString(),
                            QString(),
                            decimals(sum(connected, "currentPower") / 1000, 2),
                            decimals(sum(wallboxes, "sessionEnergy"), 2),
                            decimals(sum(wallboxes, "totalEnergyConsumed"), 1)};
    return line(cells, widths, style);
}

} // namespace

QStringList liveTable(const WallboxTable &table, const TableStyle &style)
{
    if (table.wallboxes.isEmpty())
        return {QStringLiteral("There are no wallboxes yet.")};
    const Widths widths = widthsFor(table.wallboxes, style.width);
    QStringList titles;
    QStringList units;
    for (const auto &column : columns) {
        titles.append(QLatin1String(column.title));
        units.append(QLatin1String(column.unit));
    }
    QStringList lines{line(titles, widths, style), line(units, widths, style)};
    const QList<Thing *> shown = table.wallboxes.mid(0, style.maxRows);
    for (const Thing *wallbox : shown) {
        const Row row{wallbox,
                      table.gateways.contains(wallbox->parentId()),
                      isOn(wallbox, "connected"),
                      style.unicode,
                      widths[barColumn],
                      table.now};
        lines.append(wallboxLine(row, widths, style));
    }
    if (table.wallboxes.size() > style.maxRows)
        lines.append(QStringLiteral("and %1 more; a taller window shows them")
                         .arg(table.wallboxes.size() - style.maxRows)
                         .left(style.width));
    lines.append(totalLine(table.wallboxes, widths, style));
    return lines;
}
