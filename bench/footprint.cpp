// footprint FOLDER ELEMENTS [USERS [random]]: loads the driver of the folder as the server does,
// gives it so many elements and users (one) who may do everything, or each what is drawn, and
// prints what that took as one line:
//   elements, users, load in ms, start in ms, then in KiB: heap and resident memory after the load,
//   heap and resident memory after the start; memory is counted from before the load.
// "Start" ends when every element has been published once. The driver is shown the elements in
// portions, each when the former is published, as the server does: what waits between threads is
// then no part of its memory.
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QRandomGenerator>
#include <QTextStream>
#include <QThread>
#include <QTimer>
#include <atomic>

#include "drivers/driver/capability/plugin_driver_IComunication.h"
#include "fakes/memory_database_t.h"
#include "fakes/scripted_endpoint_t.h"
#include "loader/driver_loader_t.h"
#include "memory_use_t.h"

namespace {

/// Longer than the debounce after which the driver reads the grants again.
constexpr int settling_ms = 11'000;
/// As the server's.
constexpr int elements_at_a_time = 64;

/// An endpoint that keeps nothing, so that only the driver's memory is seen.
class counting_endpoint_t : public fakes::scripted_endpoint_t {
 public:
    void publish(const QString&, const QJsonValue&, qos_t, bool, bool) override { ++published; }

    std::atomic<int> published = 0;
};

struct figures_t {
    double load_ms = 0;
    double start_ms = 0;
    memory_use_t loaded;
    memory_use_t started;
};

struct home_size_t {
    int elements;
    int users;
    bool is_random;  ///< rights, none of the elements without any
};

/// The elements of the home, in their order, with what each user may do.
class furnisher_t {
 public:
    furnisher_t(fakes::memory_database_t* _home, const home_size_t& _size)
        : home(_home), size(_size) {
        home->set_topic(QStringLiteral("installation/0001"));
        for (int user = 0; user < size.users; ++user) {
            home->add_user(QStringLiteral("u-%1").arg(user), QStringLiteral("user%1").arg(user));
        }
    }

    /// The next @p _count elements; their ids, none when all are there.
    QStringList add(int _count) {
        QStringList added;
        for (const int end = qMin(next + _count, size.elements); next < end; ++next) {
            added.append(add_one());
        }
        return added;
    }

    /// States that are published of all that is there.
    int expected() const { return states; }

 private:
    QString add_one() {
        const QString item = QStringLiteral("i-%1").arg(next);
        const QString element = QStringLiteral("e-%1").arg(next);
        home->add_item(item, QStringLiteral("0"));
        home->add_element(element, QStringLiteral("Lamp %1").arg(next), 1,
                          {{QStringLiteral("execute"), item}});
        for (int user = 0; user < size.users; ++user) {
            if (user == 0 || !size.is_random || drawn.bounded(2) == 1) {
                home->grant(QStringLiteral("u-%1").arg(user), element, 3);
                ++states;
            }
        }
        return element;
    }

    fakes::memory_database_t* home;
    home_size_t size;
    QRandomGenerator drawn{1};
    int next = 0;
    int states = 0;
};

double in_ms(const QElapsedTimer& _clock) {
    return double(_clock.nsecsElapsed()) / 1e6;
}

bool connect_driver(interfaces::plugin_driver_interface_t* _driver, fakes::memory_database_t& _home,
                    comunication::protoserver_t* _endpoint) {
    auto* comunication =
        static_cast<interfaces::IComunication*>(_driver->getCapability("IComunication"));
    return _driver->init_database(_home.get()) && comunication != nullptr &&
           comunication->init_comunication(_endpoint);
}

bool await(const counting_endpoint_t& _endpoint, int _published) {
    QElapsedTimer clock;
    clock.start();
    while (_endpoint.published < _published && clock.elapsed() < 60'000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 50);
    }
    return _endpoint.published >= _published;
}

double start(interfaces::plugin_driver_interface_t* _driver, const counting_endpoint_t& _endpoint,
             fakes::memory_database_t& _home, furnisher_t& _furnisher) {
    QElapsedTimer clock;
    clock.start();
    _driver->start(true);
    for (QStringList ids = _furnisher.add(elements_at_a_time); !ids.isEmpty();
         ids = _furnisher.add(elements_at_a_time)) {
        for (const QString& id : ids) {
            Q_EMIT _home.persistent()->onPersistentChangeElement({}, id);
        }
        if (!await(_endpoint, _furnisher.expected())) {
            break;
        }
    }
    return in_ms(clock);
}

/// Until nothing more is published for so long.
void settle(const counting_endpoint_t& _endpoint) {
    for (int before = -1; before != _endpoint.published;) {
        before = _endpoint.published;
        QEventLoop loop;
        QTimer::singleShot(settling_ms, &loop, &QEventLoop::quit);
        loop.exec();
    }
}

/// What the tables themselves take, which come while the driver runs.
memory_use_t memory_of_a_home(const home_size_t& _size) {
    const memory_use_t before = memory_use_t::now();
    fakes::memory_database_t home;
    furnisher_t(&home, _size).add(_size.elements);
    return memory_use_t::now() - before;
}

int measure(const QString& _folder, const home_size_t& _size, figures_t& _figures) {
    QThread thread;
    counting_endpoint_t endpoint;
    const memory_use_t of_home = memory_of_a_home(_size);
    fakes::memory_database_t home;
    furnisher_t furnisher(&home, _size);
    endpoint.moveToThread(&thread);
    thread.start();
    const memory_use_t before = memory_use_t::now();

    QElapsedTimer clock;
    clock.start();
    loader::driver_loader_t loader(_folder);
    auto drivers = loader.load_all();
    _figures.load_ms = in_ms(clock);
    _figures.loaded = memory_use_t::now() - before;

    const bool ready =
        drivers.size() == 1 && connect_driver(drivers.front().get_driver(), home, &endpoint);
    if (ready) {
        _figures.start_ms = start(drivers.front().get_driver(), endpoint, home, furnisher);
        settle(endpoint);
        _figures.started = memory_use_t::now() - before - of_home;
    }
    thread.quit();
    thread.wait();
    return ready && endpoint.published >= furnisher.expected() ? endpoint.published.load() : -1;
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int elements = arguments.value(2).toInt();
    const home_size_t size{elements, qMax(arguments.value(3).toInt(), 1),
                           arguments.value(4) == QLatin1String("random")};
    figures_t figures;
    const int published = elements > 0 ? measure(arguments[1], size, figures) : -1;
    if (published < elements || elements <= 0) {
        QTextStream(stderr) << "footprint: of " << elements << " elements " << published
                            << " were published.\n";
        return 1;
    }
    QTextStream out(stdout);
    out << elements << ' ' << size.users << ' ' << QString::number(figures.load_ms, 'f', 1) << ' '
        << QString::number(figures.start_ms, 'f', 0);
    for (const memory_use_t& use : {figures.loaded, figures.started}) {
        out << ' ' << use.heap / 1024 << ' ' << use.resident / 1024;
    }
    out << '\n';
    return 0;
}
