// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include <printable.h>

#include "json.h"

#include <QtTest>

/*! What keeps text from the backend from steering a terminal. */
class TestPrintable : public QObject
{
    Q_OBJECT
private slots:
    void text_data();
    void text();
    void json_data();
    void json();
};

void TestPrintable::text_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("printed");
    QTest::newRow("letters, signs, other scripts") << "Säule 7 – 日本 €"
                                                   << "Säule 7 – 日本 €";
    QTest::newRow("beyond the basic plane") << QString::fromUtf8("a😀b") << QString::fromUtf8("a😀b");
    QTest::newRow("escape, bell, delete") << "\x1b[31m\a\x7f"
                                          << "\ufffd[31m\ufffd\ufffd";
    QTest::newRow("eight-bit control sequence") << "\u009b31m"
                                                << "\ufffd31m";
    QTest::newRow("line ends and tab") << "a\nb\rc\td"
                                       << "a b c d";
    QTest::newRow("line and paragraph separator") << "a\u2028b\u2029c"
                                                  << "a b c";
    QTest::newRow("embedding and overrides") << "\u202a\u202b\u202c\u202d\u202e" << QString(5, QChar(0xfffd));
    QTest::newRow("isolates") << "\u2066\u2067\u2068\u2069" << QString(4, QChar(0xfffd));
    QTest::newRow("zero width") << "a\u200b\u200c\u200d\ufeffb"
                                << "a\ufffd\ufffd\ufffd\ufffdb";
    QTest::newRow("tag beyond the basic plane") << QString::fromUtf8("\U000e0041") << "\ufffd";
    QTest::newRow("half a surrogate pair") << QString(QChar(0xd800)) << "\ufffd";
}

void TestPrintable::text()
{
    QFETCH(QString, text);
    QTEST(printable(text), "printed");
}

void TestPrintable::json_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("printed");
    QTest::newRow("blanks and other scripts") << "a  日" << QByteArray(R"({"id":"a  日"})");
    QTest::newRow("control") << "\x1b\x7f\u009b" << QByteArray(R"({"id":"\u001b\u007f\u009b"})");
    QTest::newRow("separator and override") << "\u2028\u202e" << QByteArray(R"({"id":"\u2028\u202e"})");
    QTest::newRow("tag") << QString::fromUtf8("\U000e0041") << QByteArray(R"({"id":"\udb40\udc41"})");
}

void TestPrintable::json()
{
    QFETCH(QString, text);
    const QJsonObject object{
        {"id", text}
    };
    QTEST(printableJson(object), "printed");
    QCOMPARE(::json(printableJson(object)), object);
}

QTEST_APPLESS_MAIN(TestPrintable)
#include "tst_printable.moc"
