// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "livetable.h"

#include "printable.h"
#include "screen.h"
#include "wallboxes.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace {

/*! How a wallbox in a state of ChargePointStatus is shown. The state "pluggedIn" does not say whether there is a
    car: it is true for every wallbox that the backend reports. */
struct Appearance
{
    const char *state;
    const char *car;
    const char *colour; // an ANSI code
};
constexpr Appearance appearances[] = {
    {"Charging",      "charging", "32"  },
    {"Preparing",     "plugged",  "33"  },
    {"SuspendedEV",   "plugged",  "33"  },
    {"SuspendedEVSE", "plugged",  "33"  },
    {"Finishing",     "plugged",  "33"  },
    {"Faulted",       "-",        "1;31"},
    {"Reserved",      "-",        "36"  },
    {"Available",     "-",        "36"  },
    {"",              "-",        "2"   }, // all others, also wallboxes that are not connected
};

const Appearance &appearanceOf(const QString &state)
{
    return *std::find_if(std::begin(appearances), std::end(appearances) - 1,
                         [&state](const Appearance &known) { return state == QLatin1String(known.state); });
}

QString decimals(double value, int count)
{
    return QString::number(value, 'f', count);
}

/*! In A, of the phase that carries most. */
double current(const Thing *wallbox)
{
    return std::max({number(wallbox, "currentPhaseA"), number(wallbox, "currentPhaseB"),
                     number(wallbox, "currentPhaseC")});
}

/*! Whether the measured values of \a wallbox are those of now. */
bool isMeasured(const Thing *wallbox, const WallboxTable &table)
{
    return table.isLive && isOn(wallbox, "connected");
}

QString measured(const Thing *wallbox, const WallboxTable &table, double value, int places)
{
    return isMeasured(wallbox, table) ? decimals(value, places) : QStringLiteral("-");
}

QString stateText(const Thing *wallbox, const WallboxTable &table)
{
    if (!isOn(wallbox, "connected"))
        return QStringLiteral("not connected");
    return table.isLive ? printable(wallbox->stateValue(QStringLiteral("state")).toString())
                        : QStringLiteral("no new values");
}

QString barText(const Thing *wallbox, const WallboxTable &table, int width, bool unicode)
{
    const double limit = number(wallbox, "maxChargingCurrent");
    const bool isShown = isMeasured(wallbox, table) && limit > 0;
    const int full = isShown ? qRound(std::clamp(current(wallbox) / limit, 0.0, 1.0) * width) : 0;
    const QChar fullSign = unicode ? QChar(0x2588) : QLatin1Char('#');
    const QChar emptySign = unicode ? QChar(0x2591) : QLatin1Char('.');
    return QString(full, fullSign) + QString(width - full, emptySign);
}

/*! The current and its limit: "off" for a wallbox that is limited to 0 A, "-" for one that is not limited.
    The plugin limits wallboxes that are not enabled only after an action on one of them, some seconds later. A
    limit from before the host was started shows in the state of the wallbox alone. */
QString currentText(const Thing *wallbox, const WallboxTable &table)
{
    const double ampere = current(wallbox);
    const bool isPaused =
        isInState(wallbox, {"SuspendedEVSE"}) || (table.managed.contains(wallbox->id()) && ampere == 0);
    QString limit = isPaused ? QStringLiteral("off") : QStringLiteral("-");
    if (isOn(wallbox, "power"))
        limit = decimals(number(wallbox, "maxChargingCurrent"), 0);
    return measured(wallbox, table, ampere, 1) + QLatin1Char('/') + limit;
}

QString ageText(const Thing *wallbox, qint64 now)
{
    const qint64 timestamp = wallbox->stateValue(QStringLiteral("timestamp")).toLongLong();
    if (timestamp == 0)
        return QStringLiteral("-"); // there are no values yet
    const qint64 age = std::max<qint64>(0, now - timestamp);
    qint64 count = age;
    char unit = 's';
    for (const auto &[seconds, sign] : {
             std::pair{60,    'm'},
             std::pair{3600,  'h'},
             std::pair{86400, 'd'}
    }) {
        if (age / seconds >= 2) {
            count = age / seconds;
            unit = sign;
        }
    }
    return QString::number(std::min<qint64>(99, count)) + QLatin1Char(unit);
}

constexpr struct
{
    const char *title;
    const char *unit;
    int width;      // of name and bar: the least
    bool isNumber;  // aligned to the right
    int importance; // the least important column is left out first
} columnTable[] = {
    {"Wallbox",    "",           7,  false, 9},
    {"OCPP state", "",           13, false, 8},
    {"Car",        "",           8,  false, 4},
    {"",           "",           6,  false, 2},
    {"Current",    "A of limit", 10, true,  7},
    {"Power",      "kW",         6,  true,  6},
    {"Session",    "kWh",        7,  true,  5},
    {"Total",      "kWh",        8,  true,  1},
    {"Age",        "",           3,  true,  3},
};
constexpr int columnCount = std::size(columnTable);
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
        widths[i] = columnTable[i].width;
    for (int importance = 1; usedWidth(widths) > screenWidth && importance < columnCount; ++importance) {
        for (int i = 0; i < columnCount; ++i)
            widths[i] = columnTable[i].importance == importance ? 0 : widths[i];
    }
    int longestName = widths[nameColumn];
    for (const Thing *wallbox : wallboxes)
        longestName = std::max(longestName, std::min(columns(printable(wallbox->name())), mostForName));
    const int spare = std::max(0, screenWidth - usedWidth(widths));
    const int forName = std::min(spare, longestName - widths[nameColumn]);
    widths[nameColumn] += forName;
    if (widths[barColumn] > 0)
        widths[barColumn] += std::min(spare - forName, mostForBar - widths[barColumn]);
    return widths;
}

/*! \a text in exactly \a width columns. */
QString fitted(const QString &text, int width, bool toTheRight, const TableStyle &style)
{
    QString cell = text;
    if (columns(cell) > width)
        cell = leftColumns(text, width - 1) + (style.unicode ? QChar(0x2026) : QLatin1Char('~'));
    const QString blanks(width - columns(cell), QLatin1Char(' '));
    return toTheRight ? blanks + cell : cell + blanks;
}

/*! Lays \a cells out; \a colour is an ANSI code for the state's cell, empty for none. */
QString line(const QStringList &cells, const Widths &widths, const TableStyle &style,
             const QString &colour = QString())
{
    QStringList parts;
    for (int i = 0; i < columnCount; ++i) {
        if (widths[i] == 0)
            continue;
        QString part = fitted(cells.value(i), widths[i], columnTable[i].isNumber, style);
        if (i == stateColumn && !colour.isEmpty())
            part = QStringLiteral("\x1b[%1m%2\x1b[0m").arg(colour, part);
        parts.append(part);
    }
    QString result = parts.join(QLatin1Char(' '));
    while (result.endsWith(QLatin1Char(' ')))
        result.chop(1);
    return result;
}

QString wallboxLine(const Thing *wallbox, const WallboxTable &table, const Widths &widths,
                    const TableStyle &style)
{
    const QString state = stateText(wallbox, table);
    const Appearance &appearance = appearanceOf(state);
    const QStringList cells{printable(wallbox->name()),
                            state,
                            QLatin1String(appearance.car),
                            barText(wallbox, table, widths[barColumn], style.unicode),
                            currentText(wallbox, table),
                            measured(wallbox, table, number(wallbox, "currentPower") / 1000, 2),
                            decimals(number(wallbox, "sessionEnergy"), 2),
                            decimals(number(wallbox, "totalEnergyConsumed"), 1),
                            ageText(wallbox, table.now)};
    return line(cells, widths, style, style.colour ? QLatin1String(appearance.colour) : QLatin1String());
}

double sum(const Things &wallboxes, const char *state)
{
    double result = 0;
    for (const Thing *wallbox : wallboxes)
        result += number(wallbox, state);
    return result;
}

QString totalLine(const WallboxTable &table, const Widths &widths, const TableStyle &style)
{
    Things measured;
    std::copy_if(table.wallboxes.cbegin(), table.wallboxes.cend(), std::back_inserter(measured),
                 [&table](const Thing *wallbox) { return isMeasured(wallbox, table); });
    const auto charging = std::count_if(measured.cbegin(), measured.cend(),
                                        [](const Thing *wallbox) { return isOn(wallbox, "charging"); });
    const auto ifMeasured = [&measured](const QString &text) {
        return measured.isEmpty() ? QStringLiteral("-") : text;
    };
    const QStringList cells{
        QStringLiteral("Total"),
        QStringLiteral("%1 of %2").arg(ifMeasured(QString::number(charging))).arg(table.wallboxes.size()),
        QStringLiteral("charging"),
        QString(),
        QString(),
        ifMeasured(decimals(sum(measured, "currentPower") / 1000, 2)),
        decimals(sum(table.wallboxes, "sessionEnergy"), 2),
        decimals(sum(table.wallboxes, "totalEnergyConsumed"), 1)};
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
    for (const auto &column : columnTable) {
        titles.append(QLatin1String(column.title));
        units.append(QLatin1String(column.unit));
    }
    QStringList lines{line(titles, widths, style), line(units, widths, style)};
    const QList<Thing *> shown = table.wallboxes.mid(0, style.maxRows);
    for (const Thing *wallbox : shown)
        lines.append(wallboxLine(wallbox, table, widths, style));
    if (table.wallboxes.size() > style.maxRows)
        lines.append(QStringLiteral("and %1 more; a taller window shows them")
                         .arg(table.wallboxes.size() - style.maxRows)
                         .left(style.width));
    lines.append(totalLine(table, widths, style));
    return lines;
}
