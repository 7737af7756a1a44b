#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTest>

#include "fakes/recording_logger_t.h"
#include "unit/server/utility/support/fake_getprop_t.h"
#include "unit/server/utility/support/loaded_translator_t.h"
#include "unit/server/utility/support/options_guard_t.h"
#include "utility/utility_t.h"

using fakes::recording_logger_t;
using utility::torlan_option_t;

namespace {

/// Says "late-or-never" after 3 s, a second too late.
const QByteArray late = "exec bash -c 'read -t 3; echo late-or-never'";

/// How many warnings the reader wrote, and that each is this one.
int warnings(const recording_logger_t& _logger, const char* _function, const QString& _text) {
    int count = 0;
    for (const recording_logger_t::line_t& line : _logger.lines()) {
        if (line.function == QLatin1String(_function)) {
            const bool expected = line.message == _text && line.level == 3 && line.line > 0 &&
                                  line.source == QLatin1String("server/utility/torlan_option_t");
            count += expected ? 1 : 100;
        }
    }
    return count;
}

}  // namespace

class tst_torlan_option_t_device : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void the_language_is_written_twice_and_the_region_ignored_data() {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("language");
        QTest::addColumn<int>("logged");

        const QString fallback = QStringLiteral("en_EN");
        QTest::newRow("it-IT") << QByteArray("echo it-IT") << QStringLiteral("it_IT") << 0;
        QTest::newRow("en-US") << QByteArray("echo en-US") << QStringLiteral("en_EN") << 0;
        QTest::newRow("pt-BR") << QByteArray("echo pt-BR") << QStringLiteral("pt_PT") << 0;
        QTest::newRow("no region") << QByteArray("echo de") << QStringLiteral("de_DE") << 0;
        QTest::newRow("script part")
            << QByteArray("echo zh-Hant-TW") << QStringLiteral("zh_ZH") << 0;
        QTest::newRow("region only") << QByteArray("echo -US") << QStringLiteral("_") << 0;
        QTest::newRow("blanks") << QByteArray("echo '  fr-FR '") << QStringLiteral("fr_FR") << 0;
        QTest::newRow("nothing") << QByteArray("exit 0") << fallback << 1;
        QTest::newRow("white space") << QByteArray("echo '  '") << fallback << 1;
        QTest::newRow("failure") << QByteArray("echo it-IT; exit 3") << fallback << 1;
        QTest::newRow("late") << late << fallback << 1;
    }

    void the_language_is_written_twice_and_the_region_ignored() {
        QFETCH(const QByteArray, answer);
        QFETCH(const QString, language);
        QFETCH(const int, logged);
        fake_getprop_t device;
        device.answer_all();
        const options_guard_t options;
        device.answer("persist.sys.locale", answer);

        const recording_logger_t logger;
        QCOMPARE(torlan_option_t::read_language(), language);
        QCOMPARE(torlan_option_t::Language(), language);
        QCOMPARE(
            warnings(logger, "read_language", QStringLiteral("Set unknown language ... en_EN")),
            logged);
    }

    void a_manufacturer_may_be_empty_but_not_a_failure_data() {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("manufacturer");
        QTest::addColumn<int>("logged");

        QTest::newRow("name") << QByteArray("echo ' Acme   Devices '")
                              << QStringLiteral("Acme Devices") << 0;
        QTest::newRow("empty") << QByteArray("exit 0") << QString() << 0;
        QTest::newRow("failure") << QByteArray("echo Acme; exit 1") << QStringLiteral("unknown")
                                 << 1;
        QTest::newRow("late") << late << QString() << 0;
    }

    void a_manufacturer_may_be_empty_but_not_a_failure() {
        QFETCH(const QByteArray, answer);
        QFETCH(const QString, manufacturer);
        QFETCH(const int, logged);
        fake_getprop_t device;
        device.answer_all();
        const options_guard_t options;
        device.answer("ro.product.manufacturer", answer);

        const recording_logger_t logger;
        QCOMPARE(torlan_option_t::read_manufacture(), manufacturer);
        QCOMPARE(torlan_option_t::Manufacturer(), manufacturer);
        QCOMPARE(warnings(logger, "read_manufacture", QStringLiteral("Unknown manufacturer ... ")),
                 logged);
    }

    void an_unknown_brand_is_the_makers_own_data() {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("brand");
        QTest::addColumn<int>("logged");

        QTest::newRow("known") << QByteArray("echo lunora") << QStringLiteral("Lunora") << 0;
        QTest::newRow("blanks") << QByteArray("echo ' Domivra '") << QStringLiteral("Domivra") << 0;
        QTest::newRow("unknown") << QByteArray("echo generic") << QStringLiteral("Kelma") << 0;
        QTest::newRow("empty") << QByteArray("exit 0") << QStringLiteral("Kelma") << 0;
        QTest::newRow("failure") << QByteArray("echo Lunora; exit 1") << QStringLiteral("Kelma")
                                 << 1;
        QTest::newRow("late") << late << QStringLiteral("Kelma") << 0;
    }

    void an_unknown_brand_is_the_makers_own() {
        QFETCH(const QByteArray, answer);
        QFETCH(const QString, brand);
        QFETCH(const int, logged);
        fake_getprop_t device;
        device.answer_all();
        const options_guard_t options;
        device.answer("ro.product.brand", answer);

        const recording_logger_t logger;
        QCOMPARE(torlan_option_t::read_brand().ToString(), brand);
        QCOMPARE(torlan_option_t::Brand().ToString(), brand);
        QCOMPARE(warnings(logger, "read_brand", QStringLiteral("Unknown brand apply Kelma ... ")),
                 logged);
    }

    void an_image_version_is_split_at_hyphens_data() {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("version");
        QTest::addColumn<QStringList>("parts");
        QTest::addColumn<int>("logged");

        const auto list = [](const char* _parts) { return QString::fromLatin1(_parts).split('|'); };
        QTest::newRow("three parts") << QByteArray("echo box-1.4-77")
                                     << QStringLiteral("box-1.4-77") << list("box|1.4|77") << 0;
        QTest::newRow("empty parts")
            << QByteArray("echo a--b-") << QStringLiteral("a--b-") << list("a||b|") << 0;
        QTest::newRow("empty") << QByteArray("exit 0") << QString() << QStringList{QString()} << 0;
        QTest::newRow("failure") << QByteArray("echo a-b-c; exit 1") << QString() << list("0|0|0")
                                 << 1;
        QTest::newRow("late") << late << QString() << QStringList{QString()} << 0;
    }

    void an_image_version_is_split_at_hyphens() {
        QFETCH(const QByteArray, answer);
        QFETCH(const QString, version);
        QFETCH(const QStringList, parts);
        QFETCH(const int, logged);
        fake_getprop_t device;
        device.answer_all();
        const options_guard_t options;
        device.answer("ro.build.display.id", answer);

        const recording_logger_t logger;
        QCOMPARE(torlan_option_t::read_image_version(), parts);
        QCOMPARE(torlan_option_t::ImageVersions(), parts);
        QCOMPARE(torlan_option_t::ImageVersion(), version);
        QCOMPARE(
            warnings(logger, "read_image_version", QStringLiteral("Unknown image version ... ")),
            logged);
    }

    void a_late_device_is_waited_for_two_seconds() {
        fake_getprop_t device;
        device.answer_all();
        const options_guard_t options;
        device.answer("ro.product.manufacturer", "exec sleep 30");
        QElapsedTimer timer;
        timer.start();
        torlan_option_t::read_manufacture();
        QVERIFY(timer.elapsed() >= 1990);
        QVERIFY(timer.elapsed() < 20000);
    }

    void without_getprop_the_fallbacks_apply() {
        fake_getprop_t device;
        device.take_away();
        const recording_logger_t logger;
        const options_guard_t options;
        QCOMPARE(torlan_option_t::Language(), QStringLiteral("en_EN"));
        QCOMPARE(
            warnings(logger, "read_language", QStringLiteral("Set unknown language ... en_EN")), 1);
        QCOMPARE(torlan_option_t::Brand().ToString(), QStringLiteral("Kelma"));

        // Whether this is a failure is the process library's word for a program that never ran.
        QString output;
        QString error;
        const bool failed = utility::utility_t::execProcess(QStringLiteral("getprop"), {}, 2000,
                                                            output, error) != 0;
        QCOMPARE(torlan_option_t::Manufacturer(), failed ? QStringLiteral("unknown") : QString());
        QCOMPARE(torlan_option_t::ImageVersion(), QString());
        QCOMPARE(torlan_option_t::ImageVersions().size(), failed ? 3 : 1);
        const int told = failed ? 1 : 0;
        QCOMPARE(warnings(logger, "read_manufacture", QStringLiteral("Unknown manufacturer ... ")),
                 told);
        QCOMPARE(warnings(logger, "read_brand", QStringLiteral("Unknown brand apply Kelma ... ")),
                 told);
        QCOMPARE(
            warnings(logger, "read_image_version", QStringLiteral("Unknown image version ... ")),
            told);
    }

    void a_new_language_removes_every_translator() {
        fake_getprop_t device;
        device.answer_all();
        const options_guard_t options;
        loaded_translator_t one;
        loaded_translator_t two;
        QVERIFY(torlan_option_t::installTranslator(&one, {}, QStringLiteral("one")));
        QVERIFY(torlan_option_t::installTranslator(&two, {}, QStringLiteral("two")));

        device.answer("persist.sys.locale", "echo it-CH");  // the same language
        torlan_option_t::read_language();
        QCOMPARE(torlan_option_t::Traslators().size(), 2);

        device.answer("persist.sys.locale", "echo de-CH");
        torlan_option_t::read_language();
        QVERIFY(torlan_option_t::Traslators().isEmpty());
        QCOMPARE(QCoreApplication::translate("any", "word"), QStringLiteral("word"));
    }
};

QTEST_GUILESS_MAIN(tst_torlan_option_t_device)
#include "tst_torlan_option_t_device.moc"
