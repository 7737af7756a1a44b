// footprint FOLDER ELEMENTS: loads the driver of the folder as the server does, gives it so many
// elements and one user who may do everything, and prints what that took as one line:
//   elements, load in ms, start in ms, then in KiB: heap and resident memory after the load,
//   heap and resident memory after the start; memory is counted from before the load.
// "Start" ends when every element has been published once.
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
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

void furnish(fakes::memory_database_t& _home, int _elements) {
    _home.set_topic(QStringLiteral("installation/0001"));
    _home.add_user(QStringLiteral("u-alice"), QStringLiteral("alice"));
    for (int i = 0; i < _elements; ++i) {
        const QString item = QStringLiteral("i-%1").arg(i);
        const QString element = QStringLiteral("e-%1").arg(i);
        _home.add_item(item, QStringLiteral("0"));
        _home.add_element(element, QStringLiteral("Lamp %1").arg(i), 1,
                          {{QStringLiteral("execute"), item}});
        _home.grant(QStringLiteral("u-alice"), element, 3);
    }
}

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

double start(interfaces::plugin_driver_interface_t* _driver, const counting_endpoint_t& _endpoint,
             int _elements) {
    QElapsedTimer clock;
    clock.start();
    _driver->start(true);
    while (_endpoint.published < _elements && clock.elapsed() < 600'000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    }
    return in_ms(clock);
}

void settle() {
    QEventLoop loop;
    QTimer::singleShot(settling_ms, &loop, &QEventLoop::quit);
    loop.exec();
}

int measure(const QString& _folder, int _elements, figures_t& _figures) {
    QThread thread;
    counting_endpoint_t endpoint;
    fakes::memory_database_t home;
    furnish(home, _elements);
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
        _figures.start_ms = start(drivers.front().get_driver(), endpoint, _elements);
        settle();
        _figures.started = memory_use_t::now() - before;
    }
    thread.quit();
    thread.wait();
    return ready ? endpoint.published.load() : -1;
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int elements = arguments.value(2).toInt();
    figures_t figures;
    const int published = elements > 0 ? measure(arguments[1], elements, figures) : -1;
    if (published < elements || elements <= 0) {
        QTextStream(stderr) << "footprint: of " << elements << " elements " << published
                            << " were published.\n";
        return 1;
    }
    QTextStream out(stdout);
    out << elements << ' ' << QString::number(figures.load_ms, 'f', 1) << ' '
        << QString::number(figures.start_ms, 'f', 0);
    for (const memory_use_t& use : {figures.loaded, figures.started}) {
        out << ' ' << use.heap / 1024 << ' ' << use.resident / 1024;
    }
    out << '\n';
    return 0;
}
