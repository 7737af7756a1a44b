#include "settings_service_t.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

#include "settings_file_t.h"

using namespace torlan;

class tst_settings_service_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup();
    void put_value_is_answered_and_stays();
    void refused_request_changes_nothing_data();
    void refused_request_changes_nothing();
    void get_of_an_unknown_path_is_404();
    void refused_path_is_answered_as_such();
    void document_never_outgrows_its_limit();
    void document_never_becomes_too_deep_to_be_read();
    void small_documents_are_stored_for_people_to_read();
    void wide_and_deep_document_does_not_explode();
    void edit_by_hand_is_kept_by_the_next_put();
    void unusable_file_is_500_and_stays_as_it_is();
    void failed_write_is_500_and_stays_as_it_is();

 private:
    settings_service_t::answer_t get(const QByteArray& _path) const {
        return service->get(settings_path_t::parse(_path));
    }
    settings_service_t::answer_t put(const QByteArray& _path, const QByteArray& _text) const {
        return service->put(settings_path_t::parse(_path), _text);
    }
    QByteArray bytes() const {
        QFile source(file->path());
        return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray("missing");
    }
    static int code_of(const settings_service_t::answer_t& _answer) {
        const QJsonObject packet = QJsonDocument::fromJson(_answer.body).object();
        return packet.value("message").toString().isEmpty() ? -1 : packet.value("error").toInt();
    }

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<settings_file_t> file;
    std::unique_ptr<settings_service_t> service;
};

void tst_settings_service_t::init() {
    folder = std::make_unique<QTemporaryDir>();
    file = std::make_unique<settings_file_t>();
    QCOMPARE(file->open(folder->filePath("s.json")).error, QString());
    service = std::make_unique<settings_service_t>(file.get());
    QCOMPARE(put("/", R"({"a":{"b":"w"},"l":[1]})").status, 200);
}

void tst_settings_service_t::cleanup() {
    service.reset();
    file.reset();
}

void tst_settings_service_t::put_value_is_answered_and_stays() {
    QCOMPARE(put("/x/y", "\"word\"").body, "\"word\"");
    QCOMPARE(get("/x/y").status, 200);
    QCOMPARE(get("/x/y").body, "\"word\"");
    QCOMPARE(get("/x/").body, "{\"y\":\"word\"}");
    QCOMPARE(get("/").body, R"({"a":{"b":"w"},"l":[1],"x":{"y":"word"}})");
    QCOMPARE(QJsonDocument::fromJson(bytes()).toJson(QJsonDocument::Compact), get("/").body);
}

void tst_settings_service_t::refused_request_changes_nothing_data() {
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("status");
    QTest::newRow("no body") << QByteArray("/x") << QByteArray() << 400;
    QTest::newRow("not JSON") << QByteArray("/x") << QByteArray("{\"a\":") << 400;
    QTest::newRow("two values") << QByteArray("/x") << QByteArray("1,2") << 400;
    QTest::newRow("through a scalar") << QByteArray("/a/b/c") << QByteArray("1") << 409;
    QTest::newRow("through an array") << QByteArray("/l/0") << QByteArray("1") << 409;
    QTest::newRow("scalar as document") << QByteArray("/") << QByteArray("1") << 409;
    QTest::newRow("bad path") << QByteArray("/a/../b") << QByteArray("1") << 400;
}

void tst_settings_service_t::refused_request_changes_nothing() {
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, text);
    QFETCH(int, status);
    const QByteArray before = bytes();
    const settings_service_t::answer_t answer = put(path, text);
    QCOMPARE(answer.status, status);
    QCOMPARE(code_of(answer), status);
    QCOMPARE(bytes(), before);
}

void tst_settings_service_t::get_of_an_unknown_path_is_404() {
    QCOMPARE(get("/nothing").status, 404);
    QCOMPARE(code_of(get("/a/b/c")), 404);
}

void tst_settings_service_t::refused_path_is_answered_as_such() {
    QCOMPARE(get("/a//b").status, 400);
    QCOMPARE(code_of(get('/' + QByteArray(3000, 'k'))), 414);
}

void tst_settings_service_t::document_never_outgrows_its_limit() {
    const QByteArray part = '"' + QByteArray(1024 * 1024 - 100, 'x') + '"';
    for (const char* path : {"/p1", "/p2", "/p3"}) {
        QCOMPARE(put(path, part).status, 200);
    }
    QCOMPARE(put("/p4", part).status, 200);
    const QByteArray before = bytes();
    QCOMPARE(code_of(put("/p5", part)), 413);
    QVERIFY(bytes() == before);
    QCOMPARE(get("/p4").status, 200);
}

void tst_settings_service_t::document_never_becomes_too_deep_to_be_read() {
    const auto nested = [](int depth) { return QByteArray(depth, '[') + QByteArray(depth, ']'); };
    const QByteArray path = QByteArray("/d").repeated(32);
    QCOMPARE(put(path, nested(settings_service_t::max_depth - 32)).status, 200);
    const QByteArray before = bytes();
    for (const int depth : {settings_service_t::max_depth - 31, 900, 1023, 1024, 5000}) {
        QCOMPARE(code_of(put(path, nested(depth))), 400);
    }
    QCOMPARE(bytes(), before);
    QCOMPARE(get("/a/b").status, 200);
}

void tst_settings_service_t::small_documents_are_stored_for_people_to_read() {
    QCOMPARE(put("/", "{\"a\":{\"b\":1}}").status, 200);
    QCOMPARE(bytes(), "{\n    \"a\": {\n        \"b\": 1\n    }\n}\n");
    const QByteArray large(settings_service_t::max_readable_bytes, 'x');
    QCOMPARE(put("/a/b", '"' + large + '"').status, 200);
    QVERIFY(bytes() == "{\"a\":{\"b\":\"" + large + "\"}}");
}

void tst_settings_service_t::wide_and_deep_document_does_not_explode() {
    const int depth = settings_service_t::max_depth - 1;
    const QByteArray wide = "1" + QByteArray(",1").repeated(30000);
    QCOMPARE(put("/w", QByteArray(depth, '[') + wide + QByteArray(depth, ']')).status, 200);
    QVERIFY(bytes().size() < 100000);
}

void tst_settings_service_t::edit_by_hand_is_kept_by_the_next_put() {
    QFile source(file->path());
    QVERIFY(source.open(QIODevice::WriteOnly | QIODevice::Truncate));
    source.write("{\"by\":\"hand\"}");
    source.close();
    QCOMPARE(put("/x", "1").status, 200);
    QCOMPARE(get("/").body, R"({"by":"hand","x":1})");
}

void tst_settings_service_t::unusable_file_is_500_and_stays_as_it_is() {
    QFile source(file->path());
    QVERIFY(source.open(QIODevice::WriteOnly | QIODevice::Truncate));
    source.write("{\"by\":");
    source.close();
    QCOMPARE(code_of(get("/")), 500);
    QCOMPARE(code_of(put("/x", "1")), 500);
    QVERIFY(!get("/").body.contains(folder->path().toUtf8()));
    QCOMPARE(bytes(), "{\"by\":");
}

void tst_settings_service_t::failed_write_is_500_and_stays_as_it_is() {
    QVERIFY(QDir().mkdir(file->path() + ".new"));
    const QByteArray before = bytes();
    QCOMPARE(code_of(put("/x", "1")), 500);
    QCOMPARE(bytes(), before);
}

QTEST_GUILESS_MAIN(tst_settings_service_t)
#include "tst_settings_service_t.moc"
