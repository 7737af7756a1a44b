#include "bus_watch_t.h"

#include <sys/socket.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QLocalSocket>
#include <QTest>
#include <utility>

#include "control/protocol.h"
#include "fakes/memory_database_t.h"

using namespace torlan;
using database::live::live_bus_port_t;

class tst_bus_watch_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        memory = std::make_unique<fakes::memory_database_t>();
        realtime = std::make_unique<database::live::realtime_writer_t>(memory->get());
        gate = std::make_unique<database::live::write_gate_t>(memory->get());
        port = std::make_unique<live_bus_port_t>(memory->get(), realtime.get(), gate.get(),
                                                 bus::bus_settings_t{"local:/x", 25, true});
        watch = std::make_unique<bus_watch_t>();
        watch->follow(port.get());
    }
    void cleanup() {
        tool.reset();
        watch.reset();
        port.reset();
    }

    void without_a_bus_the_question_is_refused() {
        watch->follow(nullptr);
        ask(false);
        QCOMPARE(read().value("error").toString(),
                 "The server has no bus: it was started without --knx.");
        QVERIFY(watch->state().isEmpty());
    }

    void what_is_known_is_told() {
        connect(port.get(), &live_bus_port_t::counters_asked, port.get(),
                [this]() { port->report_counters({.received = 7}); });
        port->report_link(true);
        port->report_telegram(telegram("1/1/1"));
        ask(false);
        const QJsonObject told = read();
        QCOMPARE(told.value("url").toString(), "local:/x");
        QCOMPARE(told.value("link").toString(), "online");
        QCOMPARE(told["counters"]["received"].toInt(), 7);
        QCOMPARE(told.value("telegrams").toArray().size(), 1);
        QJsonObject one = told.value("telegrams").toArray()[0].toObject();
        QVERIFY(QDateTime::fromString(one.take("time").toString(), Qt::ISODateWithMs).isValid());
        QCOMPARE(one, (QJsonObject{{"kind", "write"},
                                   {"source", "1.1.5"},
                                   {"address", "1/1/1"},
                                   {"dpt", "9.001"},
                                   {"value", "21.5"},
                                   {"items", QJsonArray{"i-a"}}}));
    }

    void the_last_hundred_are_kept() {
        for (int i = 1; i <= 150; ++i) {
            port->report_telegram(telegram(QString("1/1/%1").arg(i)));
        }
        ask(false);
        const QJsonArray kept = read().value("telegrams").toArray();
        QCOMPARE(kept.size(), 100);
        QCOMPARE(kept.first()["address"].toString(), "1/1/51");
        QCOMPARE(kept.last()["address"].toString(), "1/1/150");
    }

    void who_follows_hears_each() {
        ask(true);
        QVERIFY(read().contains("telegrams"));
        port->report_telegram(telegram("1/1/1"));
        port->report_telegram(telegram("1/1/2"));
        QCOMPARE(read()["telegram"]["address"].toString(), "1/1/1");
        QCOMPARE(read()["telegram"]["address"].toString(), "1/1/2");
    }

    void slow_follower_is_told_how_many_it_missed() {
        ask(true);
        QVERIFY(read().contains("telegrams"));
        for (int i = 0; i < 60'000; ++i) {
            port->report_telegram(telegram("1/1/1"));
        }
        qint64 heard = 0;
        const auto read_all = [&]() {
            while (tool->canReadLine()) {
                ++heard;
                last = QJsonDocument::fromJson(tool->readLine()).object();
            }
        };
        auto* const way = watch->findChild<QLocalSocket*>();
        const auto is_drained = [&]() {
            read_all();
            return way->bytesToWrite() == 0;
        };
        QVERIFY(QTest::qWaitFor(is_drained, 20'000));
        port->report_telegram(telegram("1/1/9"));
        const auto is_here = [&]() {
            read_all();
            return std::as_const(last)["telegram"]["address"].toString() == "1/1/9";
        };
        QVERIFY(QTest::qWaitFor(is_here, 20'000));
        QVERIFY2(heard < 60'000, qPrintable(QString::number(heard)));
        QCOMPARE(last.value("lost").toInteger(), 60'001 - heard);
    }

    void kinds_have_names_data() {
        using kind_t = bus::bus_telegram_t::kind_t;
        QTest::addColumn<kind_t>("kind");
        QTest::addColumn<QString>("name");
        QTest::newRow("write") << kind_t::write << "write";
        QTest::newRow("response") << kind_t::response << "response";
        QTest::newRow("read") << kind_t::read << "read";
    }
    void kinds_have_names() {
        QFETCH(bus::bus_telegram_t::kind_t, kind);
        bus::bus_telegram_t passed = telegram("1/1/1");
        passed.kind = kind;
        port->report_telegram(passed);
        ask(false);
        const QJsonObject told = read().value("telegrams").toArray()[0].toObject();
        QTEST(told.value("kind").toString(), "name");
        QCOMPARE(told.contains("value"), kind != bus::bus_telegram_t::kind_t::read);
    }

 private:
    static bus::bus_telegram_t telegram(const QString& _address) {
        return {bus::bus_telegram_t::kind_t::write, "1.1.5", _address, "9.001", "21.5", {"i-a"}};
    }
    void ask(bool _follow) {
        int ends[2] = {};
        QCOMPARE(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends), 0);
        tool = std::make_unique<QLocalSocket>();
        tool->setSocketDescriptor(ends[0]);
        auto* const asker = new control::asker_t(ends[1], watch.get());
        bool has_asked = false;
        connect(asker, &control::asker_t::asked, watch.get(), [&](const QJsonObject& _question) {
            has_asked = true;
            watch->take(asker, _question);
        });
        // Who says nothing is cut off after a while.
        const QJsonObject question{{"version", control::version}, {"follow", _follow}};
        tool->write(QJsonDocument(question).toJson(QJsonDocument::Compact) + '\n');
        QVERIFY(QTest::qWaitFor([&]() { return has_asked; }, 20'000));
    }
    const QJsonObject read() {
        return QTest::qWaitFor([this]() { return tool->canReadLine(); })
                   ? QJsonDocument::fromJson(tool->readLine()).object()
                   : QJsonObject();
    }

    std::unique_ptr<fakes::memory_database_t> memory;
    std::unique_ptr<database::live::realtime_writer_t> realtime;
    std::unique_ptr<database::live::write_gate_t> gate;
    std::unique_ptr<live_bus_port_t> port;
    std::unique_ptr<bus_watch_t> watch;
    std::unique_ptr<QLocalSocket> tool;
    QJsonObject last;
};

QTEST_GUILESS_MAIN(tst_bus_watch_t)
#include "tst_bus_watch_t.moc"
