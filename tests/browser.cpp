// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "webdriver.h"

#include <QCoreApplication>
#include <QTextStream>

#include <csignal>

namespace {

/*! "Tab" and "Enter" as WebDriver needs them; everything else is typed as it is. */
QString keysOf(QString words)
{
    return words.replace("Tab", QChar(0xe004)).replace("Enter", QChar(0xe007)).remove(' ');
}

void tabTo(WebDriver &browser, const QString &selector)
{
    const QString isThere = "document.activeElement.matches('" + selector + "')";
    for (int presses = 0; presses < 60 && !browser.value(isThere).toBool(); ++presses)
        browser.press(keysOf("Tab"));
    browser.wait(isThere, "document.activeElement.outerHTML"); // holds already, unless it is never reached
}

/*! What is wrong with \a line; empty if it has been done. */
QString execute(WebDriver &browser, const QString &line)
{
    const QString command = line.section(' ', 0, 0);
    const QString text = line.section(' ', 1);
    const QString selector = text.section(" = ", 0, 0);
    const QString value = text.section(" = ", 1);
    const QString shown = "text('" + selector + "')";
    if (command == "open")
        browser.open(text);
    else if (command == "click")
        browser.click(text);
    else if (command == "fill")
        browser.run("at('" + selector + "').value = '" + value + '\'');
    else if (command == "press")
        browser.press(keysOf(text));
    else if (command == "tab")
        tabTo(browser, text);
    else if (command == "width")
        browser.resize(text.toInt());
    else if (command == "shows")
        browser.wait(shown + ".includes('" + value + "')", shown);
    else if (command == "wait")
        browser.wait(text, text);
    else if (command == "run")
        browser.run(text);
    else if (command == "print")
        QTextStream(stdout) << browser.value(text).toString() << '\n';
    else
        return "there is no command \"" + command + '"';
    return browser.error();
}

} // namespace

/*! browser: does in a browser what each line of standard input says, as transcripts/README.md describes. The
    first line that fails ends it, with the reason on standard error. */
int main(int argc, char **argv)
{
    // Whoever sends a signal also closes standard input, so that this program ends, and the browser with it.
    for (const int number : {SIGINT, SIGTERM})
        std::signal(number, [](int) {});
    const QCoreApplication app(argc, argv);
    WebDriver browser;
    QString error = browser.error();
    QTextStream in(stdin);
    for (QString line; error.isEmpty() && in.readLineInto(&line);)
        error = execute(browser, line);
    if (!error.isEmpty())
        QTextStream(stderr) << error << '\n';
    return error.isEmpty() ? 0 : 1;
}
