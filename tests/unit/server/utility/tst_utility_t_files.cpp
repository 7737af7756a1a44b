#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <stdexcept>

#include "fakes/recording_logger_t.h"
#include "utility/utility_t.h"

using utility::utility_t;

namespace {

constexpr const char* source = "server/utility/utility_t";

/// Throws at its first line and records the others: the one way to make reading a file throw.
class throwing_logger_t : public fakes::recording_logger_t {
 public:
    explicit throwing_logger_t(bool _standard) : standard(_standard) {}

    void log_asynch(const QString& _message, int _level, const QString& _function,
                    const QString& _source, int _line) override {
        if (!std::exchange(thrown, true)) {
            if (standard) {
                throw std::runtime_error("disk on fire");
            }
            throw 7;
        }
        recording_logger_t::log_asynch(_message, _level, _function, _source, _line);
    }

 private:
    bool standard;
    bool thrown = false;
};

}  // namespace

class tst_utility_t_files : public QObject {
    Q_OBJECT

    QTemporaryDir folder;

    QString path(const char* _name) const { return folder.filePath(_name); }
    QString put(const char* _name, const QByteArray& _content) const {
        QFile file(path(_name));
        const bool written = file.open(QIODevice::WriteOnly) && file.write(_content) >= 0;
        return written ? file.fileName() : QString();
    }
    static QByteArray content(const QString& _path) {
        QFile file(_path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

 private Q_SLOTS:
    void initTestCase() { QVERIFY(folder.isValid()); }

    void an_object_is_read_from_a_file() {
        const fakes::recording_logger_t logger;
        QCOMPARE(utility_t::readFromFile(put("good.json", R"({"a":[1]})")),
                 (QJsonObject{{"a", QJsonArray{1}}}));
        QVERIFY(logger.lines().isEmpty());
    }

    void a_missing_file_is_logged_and_empty() {
        const fakes::recording_logger_t logger;
        QVERIFY(utility_t::readFromFile(path("none.json")).isEmpty());
        QCOMPARE(logger.lines().size(), 1);
        QVERIFY(logger.contains("File not exist ... " + path("none.json"), 2, "readFromFile",
                                source, 33));
    }

    void a_broken_file_is_logged_and_empty_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("open") << QByteArray(R"({"a":)");
        QTest::newRow("empty") << QByteArray();
    }
    void a_broken_file_is_logged_and_empty() {
        const fakes::recording_logger_t logger;
        QFETCH(const QByteArray, text);
        QVERIFY(utility_t::readFromFile(put("broken.json", text)).isEmpty());
        QCOMPARE(logger.lines().size(), 1);
        QVERIFY(logger.contains("Error parsing file", 2, "readFromFile", source, 27));
    }

    void an_array_in_a_file_is_an_empty_object() {
        const fakes::recording_logger_t logger;
        QVERIFY(utility_t::readFromFile(put("array.json", "[1]")).isEmpty());
        QVERIFY(logger.lines().isEmpty());
    }

    void a_standard_exception_is_caught_and_logged() {
        const throwing_logger_t logger(true);
        QVERIFY(utility_t::readFromFile(path("none.json")).isEmpty());
        QCOMPARE(logger.lines().size(), 1);
        QVERIFY(logger.contains("Handling exception: disk on fire", 1, "readFromFile", source, 36));
    }

    void any_other_exception_is_caught_and_logged() {
        const throwing_logger_t logger(false);
        QVERIFY(utility_t::readFromFile(path("none.json")).isEmpty());
        QCOMPARE(logger.lines().size(), 1);
        const auto line = logger.lines().constFirst();
        QVERIFY(line.message.startsWith("Handling exception: "));
        QCOMPARE(line.level, 1);
        QCOMPARE(line.function, "readFromFile");
        QCOMPARE(line.line, 39);
    }

    void an_object_is_written_indented_over_what_was_there() {
        const QString file = put("out.json", QByteArray(500, 'x'));
        QVERIFY(utility_t::writeToFile(file, {{"a", 1}}, {}));
        QCOMPARE(content(file), QByteArray("{\n    \"a\": 1\n}\n"));
        QCOMPARE(utility_t::readFromFile(file), (QJsonObject{{"a", 1}}));
    }

    void without_permissions_the_file_is_readable_by_all() {
        const QString file = path("public.json");
        QVERIFY(utility_t::writeToFile(file, {}, {}));
        using P = QFileDevice;
        const auto others = P::ReadGroup | P::WriteGroup | P::ExeGroup | P::ReadOther |
                            P::WriteOther | P::ExeOther | P::ReadOwner | P::WriteOwner |
                            P::ExeOwner;
        QCOMPARE(QFile::permissions(file) & others,
                 P::ReadOwner | P::WriteOwner | P::ReadGroup | P::ReadOther);
    }

    void given_permissions_are_set() {
        const QString file = path("private.json");
        QVERIFY(utility_t::writeToFile(file, {}, QFileDevice::ReadOwner | QFileDevice::WriteOwner));
        const auto strangers = QFileDevice::ReadGroup | QFileDevice::ReadOther;
        QVERIFY((QFile::permissions(file) & strangers) == 0);
        QVERIFY(QFile::permissions(file).testFlag(QFileDevice::WriteOwner));
    }

    void a_file_that_cannot_be_opened_is_not_reported() {
        const fakes::recording_logger_t logger;
        QVERIFY(utility_t::writeToFile(path("no/such/folder.json"), {{"a", 1}}, {}));
        QVERIFY(logger.lines().isEmpty());
        QVERIFY(!QFile::exists(path("no")));
    }

    void anything_at_the_path_exists() {
        QVERIFY(utility_t::fileExists(put("there", "")));
        QVERIFY(utility_t::fileExists(folder.path()));
        QVERIFY(!utility_t::fileExists(path("nothing")));
    }
};

QTEST_GUILESS_MAIN(tst_utility_t_files)
#include "tst_utility_t_files.moc"
