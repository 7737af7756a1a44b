#include <QCoreApplication>
#include <QTest>

#include "fakes/recording_logger_t.h"
#include "unit/server/utility/support/fake_getprop_t.h"
#include "unit/server/utility/support/loaded_translator_t.h"
#include "unit/server/utility/support/options_guard_t.h"

using fakes::recording_logger_t;
using utility::torlan_option_t;

namespace {

const QString source = QStringLiteral("server/utility/torlan_option_t");

bool logged(const recording_logger_t& _logger, const char* _text, int _level,
            const char* _function) {
    for (const recording_logger_t::line_t& line : _logger.lines()) {
        if (line.message == QLatin1String(_text) && line.level == _level &&
            line.function == QLatin1String(_function) && line.source == source && line.line > 0) {
            return true;
        }
    }
    return false;
}

}  // namespace

class tst_torlan_option_t_translators : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void cleanup() { torlan_option_t::destroyInstance(); }

    void translators_are_installed_recorded_and_removed() {
        const recording_logger_t logger;
        loaded_translator_t translator;
        const QString name = QStringLiteral("app");
        QVERIFY(torlan_option_t::installTranslator(&translator, QStringLiteral("it_IT"), name));
        const QMap<QString, QTranslator*> expected{{name, &translator}};
        QCOMPARE(torlan_option_t::Traslators(), expected);
        QCOMPARE(QCoreApplication::translate("any", "word"), QStringLiteral("parola"));
        QVERIFY(logged(logger, "Loaded translation for app for language: it_IT", 4,
                       "installTranslator"));

        QVERIFY(torlan_option_t::removeTranslator(name, &translator));
        QVERIFY(torlan_option_t::Traslators().isEmpty());
        QCOMPARE(QCoreApplication::translate("any", "word"), QStringLiteral("word"));
        QVERIFY(!torlan_option_t::removeTranslator(name, &translator));
    }

    void a_refused_translator_is_logged_and_not_recorded() {
        const recording_logger_t logger;
        QTranslator empty;
        QVERIFY(!torlan_option_t::installTranslator(&empty, QStringLiteral("it_IT"),
                                                    QStringLiteral("%2")));
        QVERIFY(torlan_option_t::Traslators().isEmpty());
        QCOMPARE(logger.lines().size(), 2);
        QVERIFY(logged(logger, "Failed to install translation for %2 langauge it_IT", 3,
                       "installTranslator"));
        QVERIFY(logged(logger, "Loading translation for default language", 2, "installTranslator"));
    }

    void removal_takes_the_pointer_given_not_the_one_recorded() {
        loaded_translator_t recorded;
        loaded_translator_t given;
        const QString name = QStringLiteral("app");
        QVERIFY(torlan_option_t::installTranslator(&recorded, {}, name));
        QVERIFY(torlan_option_t::removeTranslator(name, &given));
        QVERIFY(torlan_option_t::Traslators().isEmpty());
        QCOMPARE(QCoreApplication::translate("any", "word"), QStringLiteral("parola"));
        QCoreApplication::removeTranslator(&recorded);
    }

    void an_unknown_name_leaves_the_application_alone() {
        loaded_translator_t translator;
        QVERIFY(QCoreApplication::installTranslator(&translator));
        QVERIFY(!torlan_option_t::removeTranslator(QStringLiteral("app"), &translator));
        QCOMPARE(QCoreApplication::translate("any", "word"), QStringLiteral("parola"));
    }

    void an_update_removes_and_installs_for_the_present_language() {
        fake_getprop_t device;
        device.answer_all();
        const options_guard_t options;
        const recording_logger_t logger;
        loaded_translator_t translator;
        const QString name = QStringLiteral("app");
        QVERIFY(torlan_option_t::installTranslator(&translator, QStringLiteral("x"), name));
        QVERIFY(torlan_option_t::update_traslator(name, &translator));
        QVERIFY(logged(logger, "Loaded translation for app for language: it_IT", 4,
                       "installTranslator"));
        QCoreApplication::removeTranslator(&translator);  // were it twice, one would be left
        QCOMPARE(QCoreApplication::translate("any", "word"), QStringLiteral("word"));
        QVERIFY(torlan_option_t::removeTranslator(name, &translator));
    }

    void an_update_with_a_bad_translator_loses_the_name() {
        loaded_translator_t translator;
        const QString name = QStringLiteral("app");
        QVERIFY(torlan_option_t::installTranslator(&translator, {}, name));
        QVERIFY(!torlan_option_t::update_traslator(name, nullptr));
        QVERIFY(torlan_option_t::Traslators().isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_torlan_option_t_translators)
#include "tst_torlan_option_t_translators.moc"
