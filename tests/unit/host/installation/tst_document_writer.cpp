#include <QTest>
#include <ctime>

#include "installation/document_reader.h"
#include "installation/document_writer.h"

using namespace database::installation;

class tst_document_writer : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void document_has_ordered_keys_and_ends_with_a_line_feed();
    void reading_what_was_written_gives_the_same_installation_and_bytes();
    void without_passwords_there_is_no_hash_and_it_can_be_read();
    void denial_is_not_written();
    void large_installation_is_read_back_in_seconds();
};

namespace {

const QString some_hash = "$7$101$" + QString(16, 'A') + "$" + QString(86, 'A') + "==";

installation_t sample() {
    installation_t whole;
    whole.topic = "home/1";
    whole.items = {{"i-a", {"0", {false, 0, 0.1, 1e-9}}},
                   {"i-b", {"line\n\"quoted\" ü", {true, -1e300, {}, {}}}},
                   {"i-c", {"1"}}};
    whole.scenarios = {{"s-a", true}};
    whole.thermostats = {{"t-a", {{{"mode", "i-a"}, {"x", QString()}}, "i-b", "i-a"}}, {"t-b", {}}};
    whole.elements = {{"e-a", {"Küche", 1, 0, {{"execute", "i-a"}, {"x", QString()}}, {}, {}}},
                      {"e-b", {"Night", 8, INT_MIN, {{"f", "i-b"}}, "s-a", {}}},
                      {"e-c", {"", 17, INT_MAX, {}, {}, "t-a"}}};
    whole.users = {{"u-a", {"alice", some_hash}}, {"u-b", {"bob", some_hash}}};
    whole.permissions = {{"u-a", {{"e-a", 3}, {"e-b", 1}, {"e-c", 2}}}};
    return whole;
}

}  // namespace

void tst_document_writer::document_has_ordered_keys_and_ends_with_a_line_feed() {
    installation_t whole;
    whole.topic = "home";
    whole.items = {{"i-b", {"1", {false, 0, 100, 0.5}}}, {"i-a", {"0"}}};
    QCOMPARE(write_document(whole, passwords_t::hashed), QByteArray(R"({
    "elements": {
    },
    "items": {
        "i-a": {
            "value": "0"
        },
        "i-b": {
            "max": 100,
            "min": 0,
            "step": 0.5,
            "value": "1",
            "writable": false
        }
    },
    "permissions": {
    },
    "scenarios": {
    },
    "thermostats": {
    },
    "topic": "home",
    "users": {
    }
}
)"));
}

void tst_document_writer::reading_what_was_written_gives_the_same_installation_and_bytes() {
    const QByteArray bytes = write_document(sample(), passwords_t::hashed);
    const auto result = read_document(bytes, "export");
    QCOMPARE(result.error, QString());
    QVERIFY(result.value == sample());
    QVERIFY(result.value.elements["e-a"].functions["x"].isNull());
    QCOMPARE(write_document(result.value, passwords_t::hashed), bytes);
}

void tst_document_writer::without_passwords_there_is_no_hash_and_it_can_be_read() {
    const QByteArray bytes = write_document(sample(), passwords_t::left_out);
    QVERIFY(!bytes.contains("password"));
    QVERIFY(!bytes.contains("$7$"));
    const auto result = read_document(bytes, "export");
    QCOMPARE(result.error, QString());
    installation_t expected = sample();
    for (auto& user : expected.users) {
        user.password_hash.clear();
    }
    QVERIFY(result.value == expected);
}

void tst_document_writer::denial_is_not_written() {
    installation_t whole = sample();
    const QByteArray bytes = write_document(whole, passwords_t::hashed);
    whole.permissions["u-b"]["e-a"] = 0;
    QCOMPARE(write_document(whole, passwords_t::hashed), bytes);
}

void tst_document_writer::large_installation_is_read_back_in_seconds() {
    installation_t whole = sample();
    for (int i = 0; i < 10000; ++i) {
        const QString number = QString::number(i);
        whole.items["i-" + number].value = number;
        whole.elements["e-" + number] = {"Lamp", 1, 0, {{"execute", "i-" + number}}, {}, {}};
        whole.permissions["u-a"]["e-" + number] = 3;
    }
    const QByteArray bytes = write_document(whole, passwords_t::hashed);
    // Processor time: other tests run at the same time.
    const std::clock_t begin = std::clock();
    QVERIFY(read_document(bytes, "export").value == whole);
    const auto seconds = double(std::clock() - begin) / CLOCKS_PER_SEC;
    qInfo("%.1f s", seconds);
    QVERIFY(seconds < 30);
}

QTEST_GUILESS_MAIN(tst_document_writer)
#include "tst_document_writer.moc"
