// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "options.h"

#include "commandline.h"
#include "secret.h"
#include "wallboxbounds.h"

namespace {

constexpr char description[] =
    R"(Checks whether nymea's Vela plugin would work with a backend. With the plugin's
own requests, it checks that the backend is online, asks for the wallboxes of
the group and for their live values, and says what the plugin cannot use.

The group's secret is read from --secret-file, else from the environment
variable VELA_SECRET, else from the terminal. It is never printed.

PROBLEM marks what keeps the plugin from working with the backend or with one
of its wallboxes; a warning does not. The exit status is 0 without a problem,
1 with one, and 2 for a mistake in the command line.

Nothing is changed at the backend, unless --set-limit sends a charge limit:
that limit stays in force until another one is set.

Example: vela-probe --secret-file secret.txt http://192.168.1.20:8080 yard)";

constexpr double longestTimeout = 3600; // s

QString withCurrents(const char *text)
{
    return QString::fromUtf8(text).arg(maxChargingCurrentMinValue).arg(maxChargingCurrentMaxValue);
}

LimitRequest readLimit(const QString &text)
{
    // The last equals sign separates them, because an infrastructure id may contain one, too.
    const int separator = text.lastIndexOf(QLatin1Char('='));
    bool isNumber = false;
    const int ampere = text.midRef(separator + 1).toInt(&isNumber);
    const bool isUsable =
        ampere == 0 || (ampere >= maxChargingCurrentMinValue && ampere <= maxChargingCurrentMaxValue);
    if (separator < 1 || !isNumber || !isUsable)
        endWithUsageError(withCurrents("--set-limit takes EVSE=AMPERE, with 0 or %1 to %2 whole amperes"));
    return {text.left(separator), ampere};
}

} // namespace

ProbeOptions readOptions(const QStringList &arguments)
{
    const QByteArray limitHelp =
        withCurrents("Also set a charge limit, once: 0 (no charging) or whole amperes from %1 to %2.")
            .toUtf8();
    // clang-format off
    CommandLine line(description, {
        {"secret-file", "Read the secret from this file, its only line.", "FILE"},
        {"set-limit", limitHelp.constData(), "EVSE=AMPERE"},
        {"timeout", "Give up on a step after this time (default 10).", "SECONDS", "10"},
        {"json", "Print one JSON document instead of text."},
    });
    // clang-format on
    line.addArgument("URL", "The backend, as entered in nymea: scheme, host and port.");
    line.addArgument("GROUP", "The id of the group of wallboxes.");
    line.read(arguments);
    // The arguments are not quoted: a third one may be the secret, which must not appear on a screen.
    if (line.arguments().size() != 2)
        endWithUsageError(
            QStringLiteral("takes exactly URL and GROUP; the secret is not an argument, see --secret-file"));
    ProbeOptions options;
    options.url = line.arguments().at(0);
    options.groupId = line.arguments().at(1);
    if (options.url.isEmpty() || options.groupId.isEmpty())
        endWithUsageError(QStringLiteral("neither URL nor GROUP may be empty"));
    if (line.isSet("set-limit"))
        options.limit = readLimit(line.text("set-limit"));
    options.timeout = line.seconds("timeout", longestTimeout);
    options.json = line.isSet("json");
    options.secret = readSecret(line);
    return options;
}
