#include "api/change_text.h"

#include <QJsonDocument>
#include <QTest>

using namespace torlan;

class tst_change_text : public QObject {
    Q_OBJECT

    const QDateTime noon = QDateTime(QDate(2026, 1, 31), QTime(12, 0), Qt::LocalTime);

 private Q_SLOTS:
    void change_is_a_line() {
        QCOMPARE(change_text({"e-lamp", "execute", "1"}, noon, colours_t::none),
                 QByteArray("12:00:00.000  e-lamp  execute  1\n"));
        QCOMPARE(change_text({"e-lamp"}, noon, colours_t::none),
                 QByteArray("12:00:00.000  e-lamp  is gone, or no longer to be read\n"));
    }
    void colours_end_where_they_began() {
        const QByteArray line = change_text({"e-lamp", "execute", "1"}, noon, colours_t::ansi);
        QVERIFY(line.contains("\x1b[36me-lamp\x1b[0m"));
        QVERIFY(line.endsWith("\x1b[0m\n"));
    }
    void value_steers_no_terminal() {
        QCOMPARE(change_text({"e", "f", "\x1b]0;x\x07\n"}, noon, colours_t::none),
                 QByteArray("12:00:00.000  e  f  ?]0;x??\n"));
    }
    void json_says_the_same() {
        const QByteArray line = change_json({"e", "f", "\n"}, noon);
        QVERIFY(line.endsWith("}\n") && line.count('\n') == 1);
        const QJsonObject json = QJsonDocument::fromJson(line).object();
        QCOMPARE(json["value"], "\n");
        QCOMPARE(QDateTime::fromString(json["time"].toString(), Qt::ISODateWithMs), noon);
        QCOMPARE(QJsonDocument::fromJson(change_json({"e"}, noon)).object()["gone"], true);
    }
};

QTEST_GUILESS_MAIN(tst_change_text)
#include "tst_change_text.moc"
