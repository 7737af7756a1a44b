#include <QElapsedTimer>
#include <QTest>
#include <algorithm>

#include "kit/free_port.h"
#include "kit/password_of.h"
#include "system/rights_matrix/attempts.h"
#include "system/rights_matrix/changes.h"
#include "system/rights_matrix/matrix_home.h"
#include "system/rights_matrix/victim_t.h"
#include "system/support/host_process_t.h"
#include "system/support/item_storm_t.h"

using namespace matrix;
using support::database_shell_t;
using support::item_storm_t;

namespace {

#if defined(NDEBUG)
constexpr int limit_ms = 1'000;
#else
constexpr int limit_ms = 5'000;  // and with sanitizers; less than the drivers' 10 s
#endif

/// The whole matrix, or what can be tried in seconds.
bool is_whole() {
    return qEnvironmentVariableIsSet("TORLAN_PROOF");
}

QList<door_t> doors() {
    using way_t = kit::raw_mqtt_t::way_t;
    return is_whole() ? all_doors() : QList<door_t>{{5, way_t::tcp}, {3, way_t::websockets}};
}

QList<change_t> changes() {
    if (!is_whole()) {
        return {change_t::withdrawn, change_t::recreated};
    }
    QList<change_t> all;
    for (int change = 0; change < change_count; ++change) {
        all.append(change_t(change));
    }
    return all;
}

qint64 middle(QList<qint64> _times) {
    std::sort(_times.begin(), _times.end());
    return _times.value(_times.size() / 2, -1);
}

qint64 worst(const QList<qint64>& _times) {
    return _times.isEmpty() ? -1 : *std::max_element(_times.begin(), _times.end());
}

QString weather_name(bool _storm) {
    return QLatin1String(_storm ? ", storm" : ", quiet");
}

}  // namespace

/// Every right on every path by every door, before and after every change of rights: what is
/// expected of each is in expected.cpp.
class tst_rights_matrix : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void rights_are_what_was_granted_data() { weathers(); }
    void rights_are_what_was_granted();
    void rights_end_with_a_change_data() { weathers(); }
    void rights_end_with_a_change();
    void revokes_are_fast_again_and_again_data() { weathers(); }
    void revokes_are_fast_again_and_again();
    void all_cells_were_tried();
    void no_cell_leaks() { QCOMPARE(tally.leaked(), QStringList()); }
    void nobody_is_shut_out() { QCOMPARE(tally.shut_out(), QStringList()); }
    void everybody_is_told_what_is_expected() { QCOMPARE(tally.told_otherwise(), QStringList()); }
    void cleanupTestCase();

 private:
    using victims_t = std::vector<std::unique_ptr<victim_t>>;
    /// Of many revokes, by weather.
    struct series_t {
        QList<qint64> effective, delivered, gone;
    };

    static void weathers();
    QString file() const { return host.data() + "/installation.db"; }
    std::unique_ptr<item_storm_t> begin(bool _storm) const;
    void change_rights_of(victim_t* _victim, const QString& _weather);
    void judge_later(const victims_t& _victims, const QString& _weather);
    static void verify(const victim_t::times_t& _times, const QString& _name);
    void note_times(const victim_t& _victim, const victim_t::times_t& _times,
                    const QString& _weather);

    support::host_process_t host;
    ports_t ports{};
    std::unique_ptr<warden_t> guard;
    tally_t tally;
    QStringList times;
    QMap<QString, series_t> series;
};

void tst_rights_matrix::weathers() {
    QTest::addColumn<bool>("storm");
    QTest::newRow("quiet") << false;
    if (is_whole()) {
        QTest::newRow("storm") << true;
    }
}

void tst_rights_matrix::initTestCase() {
    ports = {host.port(), kit::free_port()};
    QVERIFY2(host.import(matrix_home(QStringLiteral(SAMPLE))), qPrintable(host.error()));
    QVERIFY2(host.start({"--ws-port", QString::number(ports.websockets), "--log-level-std", "0",
                         "--log-level-file", "2"}),
             qPrintable(host.error()));
    guard = std::make_unique<warden_t>(ports);
    QVERIFY(guard->sign_in());
    QCOMPARE(host.control({"user", "remove", user_with(right_t::removed)}), 0);
}

std::unique_ptr<item_storm_t> tst_rights_matrix::begin(bool _storm) const {
    return _storm ? std::make_unique<item_storm_t>(file(), "i-storm-%") : nullptr;
}

void tst_rights_matrix::rights_are_what_was_granted() {
    QFETCH(bool, storm);
    const auto running = begin(storm);
    for (int right = 0; right < right_count; ++right) {
        const QString user = user_with(right_t(right));
        for (const door_t& door : doors()) {
            visit({user, kit::password_of(user), right_t(right), door,
                   "before" + weather_name(storm), is_whole()},
                  ports, guard.get(), &tally);
        }
    }
}

void tst_rights_matrix::rights_end_with_a_change() {
    QFETCH(bool, storm);
    victims_t victims;
    for (const change_t change : changes()) {
        victims.push_back(
            std::make_unique<victim_t>(change, storm, ports, doors(), guard.get(), &tally));
    }
    const auto running = begin(storm);
    for (const auto& victim : victims) {
        QVERIFY(victim->prepare());
        change_rights_of(victim.get(), weather_name(storm));
        for (const auto& other : victims) {
            other->keep_alive();
        }
    }
    if (is_whole()) {
        judge_later(victims, weather_name(storm));
    }
}

void tst_rights_matrix::change_rights_of(victim_t* _victim, const QString& _weather) {
    const QString moment =
        QStringLiteral("right after ") + QLatin1String(name_of(_victim->change)) + _weather;
    const database_shell_t shell(file());
    QElapsedTimer clock;
    do {
        // Due after one second to two: the change has to be first.
        clock.start();
        _victim->leave_wills(2);
        guard->leave_will(2);
    } while (clock.elapsed() > 700 && guard->wait_for_will());
    clock.start();
    QVERIFY(shell.run_together(statements_for(_victim->change, _victim->user)));
    note_times(*_victim, _victim->watch(clock, limit_ms), _weather);
    _victim->judge_sessions(moment);
    QVERIFY(guard->wait_for_will());
    _victim->judge_wills(moment);
    _victim->judge_connections(moment);
    _victim->visit_all(moment, is_whole());
    if (_victim->change == change_t::new_password) {
        for (const door_t& door : doors()) {
            visit({_victim->user, kit::password_of(warden()), right_t::readwrite, door,
                   "with the new password" + _weather, is_whole()},
                  ports, guard.get(), &tally);
        }
    }
}

void tst_rights_matrix::judge_later(const victims_t& _victims, const QString& _weather) {
    // Longer than any pause of the server's.
    QTest::qWait(20'000);
    for (const auto& victim : _victims) {
        const QString moment =
            QStringLiteral("20 s after ") + QLatin1String(name_of(victim->change)) + _weather;
        victim->judge_connections(moment);
        victim->visit_all(moment, true);
    }
}

void tst_rights_matrix::note_times(const victim_t& _victim, const victim_t::times_t& _times,
                                   const QString& _weather) {
    const QString name = QLatin1String(name_of(_victim.change)) + _weather;
    times += QStringLiteral("%1 %2 %3 %4")
                 .arg(name, -28)
                 .arg(_times.effective, 10)
                 .arg(_times.last_delivered, 15)
                 .arg(_times.retained_gone, 14);
    verify(_times, name);
}

void tst_rights_matrix::verify(const victim_t::times_t& _times, const QString& _name) {
    QVERIFY2(_times.effective >= 0 && _times.effective <= limit_ms, qPrintable(_name));
    QVERIFY2(_times.retained_gone >= 0 && _times.retained_gone <= limit_ms, qPrintable(_name));
}

void tst_rights_matrix::revokes_are_fast_again_and_again() {
    QFETCH(bool, storm);
    victim_t victim(change_t::withdrawn, storm, ports, doors().mid(0, 1), guard.get(), &tally);
    const database_shell_t shell(file());
    const auto running = begin(storm);
    QVERIFY(victim.prepare());
    series_t& found = series[weather_name(storm)];
    for (int round = 0; round < (is_whole() ? 20 : 3); ++round) {
        QVERIFY(shell.run_together({all_granted(victim.user)}));
        QVERIFY(victim.wait_until_granted());
        QElapsedTimer clock;
        clock.start();
        QVERIFY(shell.run_together(statements_for(victim.change, victim.user)));
        const victim_t::times_t seen = victim.watch(clock, limit_ms);
        verify(seen, victim.user);
        found.effective.append(seen.effective);
        found.delivered.append(seen.last_delivered);
        found.gone.append(seen.retained_gone);
    }
}

void tst_rights_matrix::all_cells_were_tried() {
    QCOMPARE(tally.missed(), QStringList());
    QVERIFY2(tally.tried() > (is_whole() ? 5'000 : 1'000), qPrintable(tally.report()));
}

void tst_rights_matrix::cleanupTestCase() {
    qInfo("\n%s\n%-28s %10s %15s %14s", qPrintable(tally.report()), "change, ms from its commit",
          "effective", "last delivered", "retained gone");
    for (const QString& line : times) {
        qInfo("%s", qPrintable(line));
    }
    for (auto each = series.begin(); each != series.end(); ++each) {
        const qsizetype count = each->effective.size();
        const QString name = QStringLiteral("median of %1").arg(count) + each.key();
        qInfo("%-28s %10lld %15lld %14lld", qPrintable(name), middle(each->effective),
              middle(each->delivered), middle(each->gone));
        qInfo("%-28s %10lld %15lld %14lld", qPrintable("worst" + each.key()),
              worst(each->effective), worst(each->delivered), worst(each->gone));
    }
    guard.reset();
}

QTEST_GUILESS_MAIN(tst_rights_matrix)
#include "tst_rights_matrix.moc"
