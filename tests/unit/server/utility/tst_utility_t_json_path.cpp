#include <QTest>

#include "fakes/recording_logger_t.h"
#include "utility/utility_t.h"

using utility::utility_t;

namespace {

/// A JSON value of any kind from its text.
QJsonValue json(const QString& _text) {
    return QJsonDocument::fromJson("[" + _text.toUtf8() + "]").array().at(0);
}

QString text(const QJsonValue& _value) {
    return _value.isUndefined() ? QStringLiteral("undefined")
                                : utility_t::QJsonArrayToQString({_value}, QJsonDocument::Compact);
}

}  // namespace

class tst_utility_t_json_path : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_value_is_read_by_path_data() {
        QTest::addColumn<QString>("root");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("result");
        const QString list = R"({"a":[{"b":1},{"b":2}]})";
        QTest::newRow("index and slash") << list << "a[1]/b"
                                         << "[2]";
        QTest::newRow("index without slash") << list << "a[1]b"
                                             << "[2]";
        QTest::newRow("last index is not applied") << list << "a[1]"
                                                   << R"([[{"b":1},{"b":2}]])";
        QTest::newRow("array without index takes the first") << list << "a/b"
                                                             << "[1]";
        QTest::newRow("member missing in an element") << list << "a/x"
                                                      << "undefined";
        QTest::newRow("element missing") << list << "a[7]/b"
                                         << "[null]";
        QTest::newRow("position on an array") << "[10,20,30]"
                                              << "2"
                                              << "[30]";
        QTest::newRow("word on an array is position 0") << "[10,20,30]"
                                                        << "x"
                                                        << "[10]";
        QTest::newRow("position outside") << "[10,20,30]"
                                          << "3"
                                          << "undefined";
        QTest::newRow("negative position") << "[10,20,30]"
                                           << "-1"
                                           << "undefined";
        QTest::newRow("below an array element") << R"([{"a":5}])"
                                                << "0/a"
                                                << "[5]";
        QTest::newRow("nested objects") << R"({"a":{"b":{"c":"x"}}})"
                                        << "a/b/c"
                                        << R"(["x"])";
        QTest::newRow("object result") << R"({"a":{"b":1}})"
                                       << "a"
                                       << R"([{"b":1}])";
        QTest::newRow("missing member") << R"({"a":1})"
                                        << "b"
                                        << "undefined";
        QTest::newRow("missing member with rest") << R"({"a":1})"
                                                  << "b/c"
                                                  << "undefined";
        QTest::newRow("below a scalar") << R"({"a":1})"
                                        << "a/b/c"
                                        << "[1]";
        QTest::newRow("scalar root") << "7"
                                     << "a"
                                     << "[null]";
        QTest::newRow("leading slash reads the empty key") << R"({"":4,"a":1})"
                                                           << "/a"
                                                           << "[4]";
        QTest::newRow("case-sensitive") << R"({"a":1})"
                                        << "A"
                                        << "undefined";
    }
    void a_value_is_read_by_path() {
        QFETCH(const QString, root);
        QFETCH(const QString, path);
        QJsonValue value = json(root);
        QTEST(text(utility_t::getJsonValue(value, path)), "result");
        QCOMPARE(value, json(root));
    }

    void a_value_is_read_from_an_object() {
        const QJsonObject object = json(R"({"a":[{"b":[1]}],"c":true})").toObject();
        QCOMPARE(text(utility_t::getJsonObjValue(object, "a[0]/b")), "[[1]]");
        QCOMPARE(text(utility_t::getJsonObjValue(object, "c")), "[true]");
        QCOMPARE(text(utility_t::getJsonObjValue(object, "a[0]")), R"([[{"b":[1]}]])");
        QVERIFY(utility_t::getJsonObjValue({}, "a").isUndefined());
    }

    void a_value_is_stored_by_path_data() {
        QTest::addColumn<QString>("root");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("result");
        const QString list = R"({"a":[1,2,3]})";
        QTest::newRow("member") << R"({"a":1})"
                                << "a"
                                << "2"
                                << R"([{"a":2}])";
        QTest::newRow("new member") << R"({"a":1})"
                                    << "b"
                                    << "2"
                                    << R"([{"a":1,"b":2}])";
        QTest::newRow("nested") << R"({"a":{"b":1}})"
                                << "a/b"
                                << "2"
                                << R"([{"a":{"b":2}}])";
        QTest::newRow("scalar is replaced") << R"({"a":1})"
                                            << "a/c"
                                            << "5"
                                            << R"([{"a":5}])";
        QTest::newRow("missing objects are not made") << "{}"
                                                      << "a/b/c"
                                                      << "5"
                                                      << R"([{"a":5}])";
        QTest::newRow("element by a further segment") << list << "a[1]/x"
                                                      << "9"
                                                      << R"([{"a":[1,9,3]}])";
        QTest::newRow("last index replaces the member") << list << "a[1]"
                                                        << "9"
                                                        << R"([{"a":9}])";
        QTest::newRow("no brackets: element 0") << list << "a/1"
                                                << "9"
                                                << R"([{"a":[9,2,3]}])";
        QTest::newRow("null element below a member") << list << "a[1]/x"
                                                     << "null"
                                                     << R"([{"a":[1,null,3]}])";
        QTest::newRow("object in an array") << R"({"a":[{"b":1}]})"
                                            << "a[0]/b"
                                            << "2"
                                            << R"([{"a":[{"b":2}]}])";
        QTest::newRow("index outside changes nothing") << list << "a[7]/x"
                                                       << "9"
                                                       << R"([{"a":[1,2,3]}])";
        QTest::newRow("negative index changes nothing") << list << "a[-1]/x"
                                                        << "9"
                                                        << R"([{"a":[1,2,3]}])";
        QTest::newRow("array root") << "[1,2,3]"
                                    << "1"
                                    << "9"
                                    << "[[1,9,3]]";
        QTest::newRow("array root outside") << "[1,2,3]"
                                            << "5"
                                            << "9"
                                            << "[[1,2,3]]";
        QTest::newRow("read at the key, written at the index") << R"([{"a":1},{"a":2}])"
                                                               << "1/a"
                                                               << "9"
                                                               << R"([[{"a":9},{"a":2}]])";
        QTest::newRow("empty key replaces the object") << R"({"a":1})"
                                                       << ""
                                                       << R"({"b":2})"
                                                       << R"([{"b":2}])";
        QTest::newRow("leading slash too") << R"({"a":1})"
                                           << "/a"
                                           << R"({"b":2})"
                                           << R"([{"b":2}])";
        QTest::newRow("empty key and a scalar empty it") << R"({"a":1})"
                                                         << ""
                                                         << "3"
                                                         << "[{}]";
        QTest::newRow("scalar root") << "7"
                                     << "a"
                                     << "9"
                                     << "[9]";
        QTest::newRow("null root") << "null"
                                   << "a/b"
                                   << "9"
                                   << "[9]";
    }
    void a_value_is_stored_by_path() {
        const fakes::recording_logger_t logger;
        QFETCH(const QString, root);
        QFETCH(const QString, path);
        QFETCH(const QString, value);
        QJsonValue target = json(root);
        QVERIFY(utility_t::updateJsonValue(target, path, json(value)));
        QTEST(text(target), "result");
        QVERIFY(logger.lines().isEmpty());
    }

    void null_deletes_or_is_refused_with_a_log_line_data() {
        QTest::addColumn<QString>("root");
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("done");
        QTest::addColumn<QString>("result");
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("line");
        QTest::newRow("member") << R"({"a":1})"
                                << "a" << true << "[{}]"
                                << "Remove: a" << 411;
        QTest::newRow("missing") << R"({"a":1})"
                                 << "b" << false << R"([{"a":1}])"
                                 << "No: b" << 400;
        QTest::newRow("nested") << R"({"a":{"b":1}})"
                                << "a/b" << true << R"([{"a":{}}])"
                                << "Remove: b" << 411;
        QTest::newRow("missing below an object refuses all")
            << R"({"a":{"b":1}})"
            << "a/c" << false << R"([{"a":{"b":1}}])"
            << "No: c" << 400;
        QTest::newRow("missing below an array element is ignored")
            << R"({"a":[{"b":1}]})"
            << "a[0]/c" << true << R"([{"a":[{"b":1}]}])"
            << "No: c" << 400;
        QTest::newRow("scalar on the way goes") << R"({"a":1})"
                                                << "a/c" << true << "[{}]"
                                                << "Remove: a" << 411;
        QTest::newRow("empty key") << R"({"a":1})"
                                   << "" << false << R"([{"a":1}])"
                                   << "No: " << 400;
        QTest::newRow("element") << "[1,2,3]"
                                 << "1" << true << "[[1,3]]"
                                 << "Remove: 1" << 389;
        QTest::newRow("element outside") << "[1,2]"
                                         << "5" << true << "[[1,2]]"
                                         << "Remove: 5" << 389;
    }
    void null_deletes_or_is_refused_with_a_log_line() {
        const fakes::recording_logger_t logger;
        QFETCH(const QString, root);
        QFETCH(const QString, path);
        QFETCH(const QString, message);
        QFETCH(const int, line);
        QJsonValue target = json(root);
        QTEST(utility_t::updateJsonValue(target, path, QJsonValue::Null), "done");
        QTEST(text(target), "result");
        QCOMPARE(logger.lines().size(), 1);
        QVERIFY(logger.contains(message, 3, "updateJsonValue", "server/utility/utility_t", line));
    }

    void a_null_member_is_stored_over_by_a_value_and_removed_by_null() {
        const fakes::recording_logger_t logger;
        QJsonValue target = json(R"({"a":null})");
        QVERIFY(utility_t::updateJsonValue(target, "a", QJsonValue::Null));
        QCOMPARE(text(target), "[{}]");
        QCOMPARE(logger.count("Remove: a"), 1);
    }

    void a_document_is_changed_at_its_root() {
        QJsonDocument object = QJsonDocument::fromJson(R"({"a":{"b":1}})");
        QVERIFY(utility_t::updateJsonValue(object, "a/b", 2));
        QCOMPARE(object.toJson(QJsonDocument::Compact), QByteArray(R"({"a":{"b":2}})"));

        QJsonDocument array = QJsonDocument::fromJson("[1,2]");
        QVERIFY(utility_t::updateJsonValue(array, "0", 5));
        QCOMPARE(array.toJson(QJsonDocument::Compact), QByteArray("[5,2]"));

        QJsonDocument empty;
        QVERIFY(utility_t::updateJsonValue(empty, "a", 1));
        QCOMPARE(empty.toJson(QJsonDocument::Compact), QByteArray(R"({"a":1})"));
    }

    void a_document_gives_the_refusal_back_unchanged() {
        const fakes::recording_logger_t logger;
        QJsonDocument document = QJsonDocument::fromJson(R"({"a":1})");
        QVERIFY(!utility_t::updateJsonValue(document, "b", QJsonValue::Null));
        QCOMPARE(document.toJson(QJsonDocument::Compact), QByteArray(R"({"a":1})"));
    }
};

QTEST_GUILESS_MAIN(tst_utility_t_json_path)
#include "tst_utility_t_json_path.moc"
