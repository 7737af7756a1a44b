#include <QTest>

#include "utility/json_path_step_t.h"

using utility::json_path_step_t;

class tst_json_path_step_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void first_step_is_taken_off_the_path_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("key");
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("rest");
        QTest::newRow("empty path") << ""
                                    << "" << 0 << "";
        QTest::newRow("one key") << "a"
                                 << "a" << 0 << "";
        QTest::newRow("two keys") << "a/b"
                                  << "a" << 0 << "b";
        QTest::newRow("rest keeps its slashes") << "a/b/c"
                                                << "a" << 0 << "b/c";
        QTest::newRow("trailing slash") << "a/"
                                        << "a" << 0 << "";
        QTest::newRow("leading slash drops the rest") << "/b/c"
                                                      << "" << 0 << "";
        QTest::newRow("only a slash") << "/"
                                      << "" << 0 << "";
        QTest::newRow("number is key and index") << "2"
                                                 << "2" << 2 << "";
        QTest::newRow("key and rest are no index") << "2/b"
                                                   << "2" << 0 << "b";
        QTest::newRow("negative number") << "-1"
                                         << "-1" << -1 << "";
        QTest::newRow("bracket last") << "list[2]"
                                      << "list" << 2 << "";
        QTest::newRow("bracket and slash") << "list[2]/name"
                                           << "list" << 2 << "name";
        QTest::newRow("bracket without slash") << "list[2]name"
                                               << "list" << 2 << "name";
        QTest::newRow("one slash only is dropped") << "list[2]//x"
                                                   << "list" << 2 << "/x";
        QTest::newRow("bracket first") << "[3]/x"
                                       << "" << 3 << "x";
        QTest::newRow("index is no number") << "a[x]/b"
                                            << "a" << 0 << "b";
        QTest::newRow("empty brackets") << "a[]/b"
                                        << "a" << 0 << "b";
        QTest::newRow("second bracket stays") << "a[1][2]"
                                              << "a" << 1 << "[2]";
        QTest::newRow("bracket behind the slash") << "a/b[1]/c"
                                                  << "a" << 1 << "b[1]/c";
        QTest::newRow("closing bracket without opening") << "a]b"
                                                         << "a]b" << 0 << "";
        QTest::newRow("opening bracket without closing") << "a[1/b"
                                                         << "a" << 0 << "";
    }
    void first_step_is_taken_off_the_path() {
        QFETCH(const QString, path);
        const json_path_step_t step = json_path_step_t::parse(path);
        QTEST(step.key, "key");
        QTEST(step.index, "index");
        QTEST(step.rest, "rest");
    }
};

QTEST_GUILESS_MAIN(tst_json_path_step_t)
#include "tst_json_path_step_t.moc"
