// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "livetable.h"

#include <algorithm>
#include <numeric>

namespace {

// In the order of the columns.
enum Column {
    NameColumn,
    StateColumn,
    CarColumn,
    BarColumn,
    CurrentColumn,
    PowerColumn,
    SessionColumn,
    TotalColumn,
    AgeColumn,
    ColumnCount
};

constexpr struct
{
    const char *title;
    const char *unit;
    int width;      // for the name and the bar the least
    bool isNumber;  // to the right
    int importance; // the least important column goes first where there is no room
} columns[ColumnCount] = {
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
constexpr int mostForName = 28;
constexpr int mostForBar = 20;

struct Layout
{
    int widths[ColumnCount]; // 0: left out
};

int usedWidth(const Layout &layout)
{
    int used = -1; // one blank between columns
    for (const int width : layout.widths)
        used += width == 0 ? 0 : width + 1;
    return used;
}

Layout layoutFor(int width)
{
    Layout layout;
    for (int i = 0; i < ColumnCount; ++i)
        layout.widths[i] = columns[i].width;
    for (int importance = 1; usedWidth(layout) > width && importance < columns[NameColumn].importance;
         ++importance) {
        for (int i = 0; i < ColumnCount; ++i) {
            if (columns[i].importance == importance)
                layout.widths[i] = 0;
        }
    }
    int spare = std::max(0, width - usedWidth(layout));
    const int forName = std::min(spare, mostForName - layout.widths[NameColumn]);
    layout.widths[NameColumn] += forName;
    spare -= forName;
    if (layout.widths[BarColumn] > 0)
        layout.widths[BarColumn] += std::min(spare, mostForBar - layout.widths[BarColumn]);
    return layout;
}

QString fitted(const QString &text, int width, const TableStyle &style)
{
    if (text.size() <= width)
        return text;
    return text.left(width - 1) + (style.unicode ? QChar(0x2026) : QLatin1Char('~'));
}

/*! Lays \a cells out; \a colour is an ANSI code for the state's cell, empty for none. */
QString line(const QStringList &cells, const Layout &layout, const TableStyle &style,
             const QString &colour = QString())
{
    QStringList parts;
    for (int i = 0; i < ColumnCount; ++i) {
        const int width = layout.widths[i];
        if (width == 0)
            continue;
        const QString cell = fitted(cells.value(i), width, style);
        QString part = columns[i].isNumber ? cell.rightJustified(width) : cell.leftJustified(width);
        if (i == StateColumn && !colour.isEmpty())
            part = QStringLiteral("\x1b[%1m%2\x1b[0m").arg(colour, part);
        parts.append(part);
    }
    QString result = parts.join(QLatin1Char(' '));
    while (result.endsWith(QLatin1Char(' ')))
        result.chop(1);
    return result;
}

QString decimals(double value, int count)
{
    return QString::number(value, 'f', count);
}

QString carText(const LiveRow &row)
{
    if (row.charging)
        return QStringLiteral("charging");
    return row.pluggedIn ? QStringLiteral("plugged") : QStringLiteral("-");
}

QString bar(const LiveRow &row, int width, bool unicode)
{
    const double share = row.limit > 0 ? std::clamp(row.current / row.limit, 0.0, 1.0) : 0.0;
    const int full = qRound(share * width);
    const QChar fullSign = unicode ? QChar(0x2588) : QLatin1Char('#');
    const QChar emptySign = unicode ? QChar(0x2591) : QLatin1Char('.');
    return QString(full, fullSign) + QString(width - full, emptySign);
}

QString currentText(const LiveRow &row)
{
    const QString limit = row.enabled ? decimals(row.limit, 0) : QStringLiteral("off");
    return QStringLiteral("%1/%2").arg(decimals(row.current, 1), limit);
}

QString ageText(qint64 timestamp, qint64 now)
{
    if (timestamp == 0)
        return QStringLiteral("-");
    const qint64 age = std::max<qint64>(0, now - timestamp);
    constexpr struct
    {
        qint64 seconds;
        char sign;
    } units[] = {
        {86400, 'd'},
        {3600,  'h'},
        {60,    'm'}
    };
    for (const auto &unit : units) {
        if (age >= 2 * unit.seconds)
            return QString::number(std::min<qint64>(99, age / unit.seconds)) + QLatin1Char(unit.sign);
    }
    return QString::number(std::min<qint64>(99, age)) + QLatin1Char('s');
}

QString stateText(const LiveRow &row)
{
    return row.connected ? row.state : QStringLiteral("not connected");
}

QString stateColour(const LiveRow &row)
{
    constexpr struct
    {
        const char *state;
        const char *colour;
    } colours[] = {
        {"Charging",      "32"  },
        {"Preparing",     "33"  },
        {"SuspendedEV",   "33"  },
        {"SuspendedEVSE", "33"  },
        {"Finishing",     "33"  },
        {"Faulted",       "1;31"},
        {"Reserved",      "36"  },
        {"Available",     "36"  }
    };
    const QString state = stateText(row);
    for (const auto &entry : colours) {
        if (state == QLatin1String(entry.state))
            return QLatin1String(entry.colour);
    }
    return QStringLiteral("2");
}

QString rowLine(const LiveRow &row, const Layout &layout, const TableStyle &style, qint64 now)
{
    const QStringList cells{row.name,
                            stateText(row),
                            carText(row),
                            bar(row, layout.widths[BarColumn], style.unicode),
                            currentText(row),
                            decimals(row.power / 1000, 2),
                            decimals(row.sessionEnergy, 2),
                            decimals(row.totalEnergy, 1),
                            ageText(row.timestamp, now)};
    return line(cells, layout, style, style.colour ? stateColour(row) : QString());
}

double sum(const QVector<LiveRow> &rows, double LiveRow::*value)
{
    return std::accumulate(rows.cbegin(), rows.cend(), 0.0,
                           [value](double total, const LiveRow &row) { return total + row.*value; });
}

QString totalLine(const QVector<LiveRow> &rows, const Layout &layout, const TableStyle &style)
{
    const auto charging =
        std::count_if(rows.cbegin(), rows.cend(), [](const LiveRow &row) { return row.charging; });
    QStringList cells{QStringLiteral("Total"), QStringLiteral("%1 of %2").arg(charging).arg(rows.size()),
                      QStringLiteral("charging")};
    cells << QString() << QString() << decimals(sum(rows, &LiveRow::power) / 1000, 2)
          << decimals(sum(rows, &LiveRow::sessionEnergy), 2) << decimals(sum(rows, &LiveRow::totalEnergy), 1);
    return line(cells, layout, style);
}

} // namespace

LiveRow liveRow(const Thing *wallbox)
{
    const auto value = [wallbox](const char *state) { return wallbox->stateValue(QLatin1String(state)); };
    LiveRow row;
    row.name = wallbox->name();
    row.state = value("state").toString();
    row.connected = value("connected").toBool();
    row.pluggedIn = value("pluggedIn").toBool();
    row.charging = value("charging").toBool();
    row.enabled = value("power").toBool();
    row.current = std::max({value("currentPhaseA").toDouble(), value("currentPhaseB").toDouble(),
                            value("currentPhaseC").toDouble()});
    row.limit = value("maxChargingCurrent").toDouble();
    row.power = value("currentPower").toDouble();
    row.sessionEnergy = value("sessionEnergy").toDouble();
    row.totalEnergy = value("totalEnergyConsumed").toDouble();
    row.timestamp = value("timestamp").toLongLong();
    return row;
}

QStringList liveTable(const QVector<LiveRow> &rows, const TableStyle &style, qint64 now)
{
    const Layout layout = layoutFor(style.width);
    QStringList titles;
    QStringList units;
    for (const auto &column : columns) {
        titles.append(QLatin1String(column.title));
        units.append(QLatin1String(column.unit));
    }
    QStringList lines{line(titles, layout, style), line(units, layout, style)};
    const auto shown = rows.mid(0, style.maxRows);
    for (const LiveRow &row : shown)
        lines.append(rowLine(row, layout, style, now));
    if (rows.size() > style.maxRows)
        lines.append(QStringLiteral("and %1 more; a taller window shows them")
                         .arg(rows.size() - style.maxRows)
                         .left(style.width));
    lines.append(totalLine(rows, layout, style));
    return lines;
}
