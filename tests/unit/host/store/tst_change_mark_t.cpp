#include <QTest>
#include <limits>

#include "store/change_mark_t.h"

using database::store::change_mark_t;

class tst_change_mark_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void text_loses_no_digit() {
        const change_mark_t mark{
            {std::numeric_limits<dev_t>::max(), std::numeric_limits<ino_t>::max()},
            (qint64(1) << 53) + 1};
        QVERIFY(change_mark_t::from_json(mark.to_json()) == mark);
    }

    void what_is_none_is_none_data() {
        QTest::addColumn<QJsonObject>("json");
        const auto row = [](const char* _name, const QJsonObject& _json) {
            QTest::newRow(_name) << _json;
        };
        row("empty", {});
        row("numbers", {{"device", 1}, {"file", 2}, {"sequence", 3}});
        row("without sequence", {{"device", "1"}, {"file", "2"}});
        row("no number", {{"device", "1"}, {"file", "x"}, {"sequence", "3"}});
    }
    void what_is_none_is_none() {
        QFETCH(QJsonObject, json);
        QVERIFY(!change_mark_t::from_json(json));
    }
};

QTEST_APPLESS_MAIN(tst_change_mark_t)
#include "tst_change_mark_t.moc"
