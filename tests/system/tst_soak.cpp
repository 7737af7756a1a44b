#include <QRandomGenerator>
#include <QtTest>

#include "kit/lamps_home.h"
#include "system/support/api_user.h"
#include "system/support/database_shell_t.h"
#include "system/support/host_process_t.h"
#include "system/support/process_size_t.h"
#include "system/support/shown_to_user.h"

using namespace kit;
using namespace support;

/// Everything that happens to an installation, mixed, for two minutes; as a proof for twenty:
/// nothing is left unanswered, nothing grows.
class tst_soak : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void nothing_is_left_unanswered_and_nothing_grows();

 private:
    /// One thing that happens. False: somebody was not answered.
    bool happens(int _turn);
    bool ask();
    bool come_and_go();
    void flood();
    /// Sizes of the third of the samples that begins there: medians.
    static process_size_t middle(const QList<process_size_t>& _samples, int _third);
    void compare(const char* _name, const QList<process_size_t>& _samples, double _minutes);

    host_process_t host;
    std::vector<std::unique_ptr<mqtt_client_t>> users;
    int asked = 0;
};

namespace {

const bool is_proof = qEnvironmentVariableIsSet("TORLAN_PROOF");
const int seconds = is_proof ? 20 * 60 : 120;
constexpr int lamps = 300;
constexpr int items = 100;
constexpr int people = 6;
/// What may come between two thirds of the time. Shorter than minutes: first uses of things.
const double most_growth_mib = is_proof ? 4 : 16;

int any(int _below) {
    return QRandomGenerator::global()->bounded(_below);
}

QString name_of(int _user) {
    return QStringLiteral("user%1").arg(_user);
}

int retained_for_all(const host_process_t& _host) {
    int count = 0;
    for (int user = 0; user < people; ++user) {
        count +=
            int(states_retained(_host.port(), name_of(user), password_of(name_of(user))).size());
    }
    return count;
}

int due_for_all(const host_process_t& _host) {
    int count = 0;
    for (int user = 0; user < people; ++user) {
        count += int(states_due(_host.data(), name_of(user)).size());
    }
    return count;
}

}  // namespace

void tst_soak::nothing_is_left_unanswered_and_nothing_grows() {
    QVERIFY2(host.import(lamps_home(lamps, items, numbered_users(people))),
             qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
    for (int user = 0; user < people; ++user) {
        users.push_back(std::make_unique<mqtt_client_t>());
        QVERIFY(join(*users.back(), host, name_of(user)));
    }
    QCOMPARE(retained_for_all(host), due_for_all(host));
    QList<process_size_t> server;
    QList<process_size_t> broker;
    const QDeadlineTimer end(seconds * 1'000);
    QElapsedTimer since;
    since.start();
    for (int turn = 0; !end.hasExpired(); ++turn) {
        QVERIFY2(happens(turn), qPrintable(QStringLiteral("turn %1").arg(turn)));
        if (since.elapsed() >= 1'000) {
            since.restart();
            server += process_size_t::of(host.pid());
            broker += process_size_t::of(host.broker_pid());
        }
    }
    qInfo("%d requests in %d s, 0 without an answer", asked, seconds);
    compare("server", server, seconds / 60.0);
    compare("broker", broker, seconds / 60.0);
    QTRY_COMPARE_WITH_TIMEOUT(retained_for_all(host), due_for_all(host), 30'000);
    QCOMPARE(host.stop(), 0);
}

bool tst_soak::happens(int _turn) {
    if (_turn % 2'000 == 500) {
        const auto right = any(2) == 0 ? "deny" : "readwrite";
        return host.control({"grant", name_of(any(people)), lamp_id(any(lamps)), right}) == 0;
    }
    if (_turn % 5'000 == 1'000) {
        return host.control({"user", "add", "guest"}, "a password\n") == 0 &&
               host.control({"grant", "guest", lamp_id(any(lamps)), "read"}) == 0;
    }
    if (_turn % 5'000 == 3'000) {
        return host.control({"user", "remove", "guest"}) == 0;
    }
    if (_turn % 1'000 == 700) {
        return come_and_go();
    }
    if (_turn % 3'000 == 2'200) {
        flood();
        return true;
    }
    if (_turn % 50 == 0) {
        const database_shell_t shell(host.data() + "/installation.db");
        return shell.run(QStringLiteral("UPDATE items SET value = %1 WHERE id LIKE 'i-%2%'")
                             .arg(any(2))
                             .arg(any(10)));
    }
    return ask();
}

bool tst_soak::ask() {
    const int user = any(people);
    mqtt_client_t& client = *users[size_t(user)];
    const QString name = name_of(user);
    const QString lamp = lamp_id(any(lamps + 5));
    ++asked;
    const int kind = any(100);
    const QJsonObject answer =
        kind < 4   ? client.request(request_topic(name, "get"))
        : kind < 8 ? client.request(request_topic(name, "set"),
                                    {{"data", QJsonObject{{lamp, QJsonObject()}}}})
        : kind < 40
            ? client.request(request_topic(name, "set", lamp), write_payload("execute", any(2)))
            : client.request(request_topic(name, "get", lamp));
    client.forget();
    return !answer.isEmpty();
}

bool tst_soak::come_and_go() {
    const int user = any(people);
    users[size_t(user)]->drop();
    users[size_t(user)] = std::make_unique<mqtt_client_t>();
    return join(*users[size_t(user)], host, name_of(user));
}

// Requests that are no JSON, one behind the other, of somebody who hears no answer.
void tst_soak::flood() {
    mqtt_client_t stranger;
    if (stranger.sign_in(host.port(), name_of(0), password_of(name_of(0))) == 0) {
        for (int i = 0; i < 300; ++i) {
            stranger.publish(request_topic(name_of(0), "get"), QByteArray(any(2'000), ' '));
        }
    }
}

process_size_t tst_soak::middle(const QList<process_size_t>& _samples, int _third) {
    const qsizetype size = _samples.size() / 3;
    const auto median = [&](auto _field) {
        QList<double> values;
        for (const auto& sample : _samples.mid(_third * size, size)) {
            values += double(sample.*_field);
        }
        std::sort(values.begin(), values.end());
        return values[values.size() / 2];
    };
    return {median(&process_size_t::mib), int(median(&process_size_t::descriptors)),
            int(median(&process_size_t::threads))};
}

void tst_soak::compare(const char* _name, const QList<process_size_t>& _samples, double _minutes) {
    QVERIFY(_samples.size() > 30);
    const process_size_t former = middle(_samples, 1);
    const process_size_t last = middle(_samples, 2);
    qInfo("%s: %.1f, then %.1f MiB (%+.2f a minute), %d and %d descriptors, %d and %d threads",
          _name, former.mib, last.mib, (last.mib - former.mib) / (_minutes / 3), former.descriptors,
          last.descriptors, former.threads, last.threads);
    QVERIFY(former.mib > 1 && last.mib - former.mib < most_growth_mib);
    // One of a tool or a client that is just there.
    QVERIFY(qAbs(last.descriptors - former.descriptors) <= 2);
    QCOMPARE(last.threads, former.threads);
}

QTEST_GUILESS_MAIN(tst_soak)
#include "tst_soak.moc"
