#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <thread>

#include "fakes/recording_logger_t.h"
#include "utility/utility_t.h"

using fakes::recording_logger_t;
using utility::utility_t;

namespace {

const QString source = QStringLiteral("server/utility/utility_t");

bool matches(const QString& _text, const char* _pattern) {
    return QRegularExpression(QRegularExpression::anchoredPattern(QLatin1String(_pattern)))
        .match(_text)
        .hasMatch();
}

}  // namespace

class tst_utility_t_system : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void identifiers_are_32_hexadecimal_digits() {
        for (int i = 0; i < 200; ++i) {
            QVERIFY(matches(utility_t::generateUUId(), "[0-9a-f]{32}"));
            QVERIFY(matches(utility_t::generateInstallationId(), "[0-9a-f]{32}"));
        }
    }

    void number_identifiers_are_32_to_64_decimal_digits() {
        bool longer = false;
        for (int i = 0; i < 200; ++i) {
            const QString id = utility_t::generateNumberUUId();
            QVERIFY2(matches(id, "[0-9]{32,64}"), qPrintable(id));
            longer = longer || id.size() > 32;
        }
        QVERIFY(longer);
    }

    void identifiers_never_repeat() {
        QSet<QString> ids;
        for (int i = 0; i < 100; ++i) {
            ids << utility_t::generateUUId() << utility_t::generateNumberUUId()
                << utility_t::generateInstallationId();
        }
        QCOMPARE(ids.size(), 300);
    }

    void a_text_hash_is_the_sha1_of_its_utf8() {
        QCOMPARE(utility_t::getHash(QString()),
                 QStringLiteral("da39a3ee5e6b4b0d3255bfef95601890afd80709"));
        QCOMPARE(utility_t::getHash(QString(QChar(0xe8))),
                 QStringLiteral("151666e2e2873be7fc40e7ae214f38b00bc50183"));
    }

    void an_object_hash_does_not_depend_on_the_order_of_building() {
        QJsonObject one{{QStringLiteral("a"), 1}};
        one.insert(QStringLiteral("b"), QStringLiteral("x"));
        QJsonObject other{{QStringLiteral("b"), QStringLiteral("x")}};
        other.insert(QStringLiteral("a"), 1);
        QCOMPARE(utility_t::getHash(one),
                 QStringLiteral("6773f537e12881321ac5aca774c9ac2dd80f3a12"));
        QCOMPARE(utility_t::getHash(other), utility_t::getHash(one));
    }

    void a_file_hash_uses_the_given_algorithm() {
        const QTemporaryDir folder;
        QFile file(folder.filePath(QStringLiteral("file")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write("torlan\n"), 7);
        file.close();
        QCOMPARE(utility_t::getHash(file.fileName(), QCryptographicHash::Md5),
                 QStringLiteral("066ec5d35a8f8279232af0532214c381"));
        QCOMPARE(utility_t::getHash(file.fileName(), QCryptographicHash::Sha256),
                 QStringLiteral("5a1ef03e234bc94abf109b81dbd5a785"
                                "7a2cf654db97a4a014b57b45ec3e1d3c"));
    }

    void an_unreadable_file_has_an_empty_hash_and_no_log_line() {
        const recording_logger_t logger;
        const QTemporaryDir folder;
        QCOMPARE(utility_t::getHash(folder.filePath(QStringLiteral("no")), QCryptographicHash::Md5),
                 QString());
        QCOMPARE(utility_t::getHash(folder.path(), QCryptographicHash::Md5), QString());
        // It opens, but its first byte cannot be read.
        const QString memory = QStringLiteral("/proc/self/mem");
        QVERIFY(QFile(memory).open(QIODevice::ReadOnly));
        QCOMPARE(utility_t::getHash(memory, QCryptographicHash::Md5), QString());
        QVERIFY(logger.lines().isEmpty());
    }

    void a_thread_with_a_dispatcher_has_an_event_loop() {
        const recording_logger_t logger;
        QVERIFY(utility_t::HaveEventLoop(QThread::currentThread()));
        QThread idle;
        QVERIFY(!utility_t::HaveEventLoop(&idle));
        QVERIFY(!utility_t::HaveEventLoop(nullptr));
        const QString function = QStringLiteral("HaveEventLoop");
        QVERIFY(logger.contains(QStringLiteral("Have event loop"), 2, function, source, 479));
        QVERIFY(logger.contains(QStringLiteral("Not have event loop"), 2, function, source, 474));
        QCOMPARE(logger.count(QStringLiteral("Not have event loop")), 2);
    }

    void a_running_thread_without_a_dispatcher_has_no_event_loop() {
        bool has_one = true;
        std::thread plain(
            [&has_one]() { has_one = utility_t::HaveEventLoop(QThread::currentThread()); });
        plain.join();
        QVERIFY(!has_one);
    }

    void nothing_needs_a_logger() { QVERIFY(utility_t::HaveEventLoop(QThread::currentThread())); }
};

QTEST_GUILESS_MAIN(tst_utility_t_system)
#include "tst_utility_t_system.moc"
