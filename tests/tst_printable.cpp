// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "json.h"
#include "printable.h"

#include <QtTest>

/*! Text from the backend cannot control a terminal, whether it is printed as it is or as JSON. */
class TestPrintable : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void unsafeText_data();
    void unsafeText();
    void halfASurrogatePair();
};

void TestPrintable::unsafeText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("printed");
    QTest::addColumn<QString>("json");
    const auto row = [](const char *name, const char *text, const char *printed, const char *json) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(printed)
                            << QString::fromUtf8(json);
    };
    row("letters, signs, other scripts", "Säule 7 –  日本 €", "Säule 7 –  日本 €", "Säule 7 –  日本 €");
    row("beyond the basic plane", "a😀b", "a😀b", "a😀b");
    row("escape, bell, delete", "\x1b[31m\a\x7f", "�[31m��", R"(\u001b[31m\u0007\u007f)");
    row("eight-bit control sequence", "\u009b31m", "�31m", R"(\u009b31m)");
    row("line ends and tab", "a\nb\rc\td", "a b c d", R"(a\nb\rc\td)");
    row("line and paragraph separator", "a\u2028b\u2029c", "a b c", R"(a\u2028b\u2029c)");
    row("embedding and overrides", "\u202a\u202b\u202c\u202d\u202e", "�����",
        R"(\u202a\u202b\u202c\u202d\u202e)");
    row("isolates", "\u2066\u2067\u2068\u2069", "����", R"(\u2066\u2067\u2068\u2069)");
    row("zero width", "a\u200b\u200c\u200d\ufeffb", "a����b", R"(a\u200b\u200c\u200d\ufeffb)");
    row("tag beyond the basic plane", "\U000e0041", "�", R"(\udb40\udc41)");
}

void TestPrintable::unsafeText()
{
    QFETCH(QString, text);
    QFETCH(QString, json);
    QTEST(printable(text), "printed");
    const QJsonObject object{
        {"id", text}
    };
    QCOMPARE(QString::fromUtf8(printableJson(object)), "{\"id\":\"" + json + "\"}");
    QCOMPARE(::json(printableJson(object)), object);
}

/*! No UTF-8 stands for it, so that it cannot be a row above. */
void TestPrintable::halfASurrogatePair()
{
    QCOMPARE(printable(QChar(0xd800)), QString("\ufffd"));
}

QTEST_APPLESS_MAIN(TestPrintable)
#include "tst_printable.moc"
