#include "option_singletons_t.h"

#include <QDateTime>
#include <QTest>

#include "options_t.h"
#include "utility/torlan_option_t.h"

using torlan::option_singletons_t;
using torlan::options_t;
using utility::torlan_option_t;

class tst_option_singletons_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void the_options_are_there_as_long_as_it_lives() {
        {
            const option_singletons_t singletons{options_t()};
            QCOMPARE(torlan_option_t::Platform(), QSysInfo::kernelType());
            QCOMPARE(torlan_option_t::Version(), QStringLiteral(PROJECT_VERSION));
            QVERIFY(torlan_option_t::Versions().contains(QStringLiteral("libhttp")));
            QCOMPARE(torlan_option_t::Versions().value(QStringLiteral("qt")), qVersion());
            QVERIFY(!torlan_option_t::BuildBranch().isEmpty());
            QVERIFY(!torlan_option_t::BuildCommit().isEmpty());
            QVERIFY(QDateTime::fromString(torlan_option_t::BuildTime(), Qt::ISODate).isValid());
        }
        QVERIFY(torlan_option_t::getInstance() == nullptr);
    }

    void what_is_not_given_is_as_shipped() {
        const option_singletons_t singletons{options_t()};
        QCOMPARE(torlan_option_t::LogLevelStd(), 4u);
        QCOMPARE(torlan_option_t::LogLevelFile(), 5u);
        QCOMPARE(torlan_option_t::LogSize(), 25u);
        QCOMPARE(torlan_option_t::LogRotate(), 5u);
    }

    void what_is_given_is_taken() {
        options_t options;
        options.stdout_level = 1;
        options.file_level = 2;
        options.log_size = 3;
        options.log_rotate = 0;
        const option_singletons_t singletons(options);
        QCOMPARE(torlan_option_t::LogLevelStd(), 1u);
        QCOMPARE(torlan_option_t::LogLevelFile(), 2u);
        QCOMPARE(torlan_option_t::LogSize(), 3u);
        QCOMPARE(torlan_option_t::LogRotate(), 0u);
    }
};

QTEST_GUILESS_MAIN(tst_option_singletons_t)
#include "tst_option_singletons_t.moc"
