#include "host_t.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QTimer>

#include "audit/file_name.h"
#include "broker/broker_rights_check_t.h"
#include "broker/port_check.h"
#include "chosen_log.h"
#include "connection_topic.h"
#include "console_facts.h"
#include "driver_folder.h"
#include "first_request_t.h"
#include "logs/log_line.h"
#include "program/port_holder.h"
#include "ready_probe_t.h"
#include "start_broken_off.h"
#include "store/database_check.h"
#include "tell_other_folder.h"
#include "utility/torlan_option_t.h"

namespace torlan {

using comunication::mqtt_endpoint_t;
using namespace database::live;
using utility::torlan_option_t;
using utility::logs::classlogs;
using utility::logs::spdlog_logger_t;

namespace {

constexpr const char* source = "apps/torlan-server/host_t";
constexpr QLatin1String database_name("installation.db");
constexpr std::chrono::milliseconds connect_timeout{10'000};
/// Drivers make a message for each user of each.
constexpr int elements_at_a_time = 64;
/// Retained ones that the broker is asked for at once.
constexpr qsizetype states_at_a_time = 5'000;

/// As it is called from the folder that this program was started in.
QStringList torlanctl_call(const QString& _data) {
    const QString program = QCoreApplication::applicationDirPath() + QStringLiteral("/torlanctl");
    const QString nearby = QDir::current().relativeFilePath(program);
    QStringList call{nearby.startsWith(QLatin1String("..")) ? program : nearby};
    if (_data != QDir(QStringLiteral("var")).absolutePath()) {
        call << QStringLiteral("--data") << _data;
    }
    return call;
}

}  // namespace

host_t::host_t(const options_t& _options, utility::logs::early_logger_t* _early, QObject* _parent)
    : QObject(_parent),
      options(_options),
      early(_early),
      folder(_options.data),
      former_broker(folder.file(QStringLiteral("broker.lock"))),
      settings(_options),
      desk(&errors) {
    connect(this, &host_t::waiting, &desk, &control_desk_t::set_waiting);
    connect(&settings, &settings_t::waiting, this, &host_t::waiting);
    connect(this, &host_t::broken_off, &import, &installation_import_t::give_up);
    connect(&former_broker, &former_broker_t::waiting, this, &host_t::waiting);
    connect(this, &host_t::broken_off, &former_broker, &former_broker_t::give_up);
    connect(this, &host_t::broken_off, &settings, &settings_t::give_up);
}

host_t::~host_t() {
    static_cast<void>(stop());
}

base::result_t host_t::start() {
    using step_t = base::result_t (host_t::*)();
    base::result_t result;
    for (const step_t step :
         {&host_t::read_import, &host_t::open_folder, &host_t::read_settings, &host_t::open_log,
          &host_t::load_drivers, &host_t::await_former_broker, &host_t::check_ports,
          &host_t::open_database, &host_t::start_broker, &host_t::check_rights,
          &host_t::connect_endpoint, &host_t::start_drivers, &host_t::show_elements,
          &host_t::ask_api}) {
        if (result.is_ok() && given_up) {
            result = start_broken_off();
        }
        if (result.is_ok()) {
            result = (this->*step)();
        }
    }
    if (!result.is_ok()) {
        static_cast<void>(stop());
        folder.take_back();
        return result;
    }
    desk.follow({.database = database.get(),
                 .live = live.get(),
                 .broker = broker.get(),
                 .accounts = accounts.get(),
                 .endpoint = endpoint->endpoint(),
                 .bus = knx.get()});
    return result;
}

void host_t::break_off() {
    given_up = true;
    Q_EMIT broken_off();
}

base::result_t host_t::stop() {
    desk.close();
    drivers.stop();
    drivers.clear();
    // The database is looked at once more when those whom a change concerns have gone.
    if (live) {
        live->feed()->disconnect(this);
    }
    sweep.disconnect(this);
    hidden.reset();
    pace.reset();
    endpoint.reset();
    door_log.reset();
    accounts.reset();
    broker.reset();
    bus.reset();
    knx.reset();
    refusals.reset();
    const base::result_t saved = live ? live->close() : base::result_t();
    if (!saved.is_ok()) {
        utility::log_line(saved.error, 1, "stop", source, __LINE__);
    }
    live.reset();
    database.reset();
    trail.close();
    classlogs::setInstance(nullptr);
    errors.pass_on_to(nullptr);
    logger.reset();
    return saved;
}

base::result_t host_t::read_import() {
    if (!options.import_file.isEmpty()) {
        return import.read(options.import_file, folder.file(database_name));
    }
    if (options.sample_file.isEmpty()) {
        return {};
    }
    // A file alone is no installation: the first start may have been killed before its import.
    const auto exists = database::store::holds_installation(folder.file(database_name), 5000);
    return exists.is_ok() && !exists.value ? import.read(options.sample_file, {})
                                           : base::result_t(exists);
}

base::result_t host_t::open_folder() {
    base::result_t opened = folder.open();
    if (opened.is_ok()) {
        describe({}, {});
        desk.open(options.data);
    }
    return opened;
}

void host_t::describe(const QString& _log, const QString& _audit) {
    desk.describe({.data = options.data,
                   .log = _log,
                   .audit = _audit,
                   .port = options.port,
                   .ws_port = options.ws_port,
                   .config_port = options.config_port});
}

base::result_t host_t::read_settings() {
    return settings.read();
}

base::result_t host_t::open_log() {
    const utility::logs::log_settings_t log =
        chosen_log(options.logs.isEmpty() ? folder.file(QStringLiteral("logs")) : options.logs);
    if (!QDir().mkpath(log.folder)) {
        return base::result_t::failed(
            QStringLiteral("The folder %1 cannot be made.").arg(log.folder));
    }
    auto opened = spdlog_logger_t::open(log);
    if (!opened.is_ok()) {
        return opened;
    }
    logger = std::move(opened.value);
    errors.pass_on_to(logger.get());
    classlogs::setInstance(&errors);
    early->hand_over(&errors);
    const QDir place(log.folder);
    describe(place.filePath(log.name + QStringLiteral(".log")),
             place.filePath(audit::file_name(audit::server_file, 0)));
    torlan_option_t::print();
    tell_other_folder(QStringLiteral("The log is"), log.folder, torlan_option_t::LogsFolder());
    return trail.open(log.folder);
}

base::result_t host_t::load_drivers() {
    const QString from = driver_folder(options.plugins);
    tell_other_folder(QStringLiteral("Drivers are"), from, torlan_option_t::PluginFolder());
    return drivers.load(from);
}

base::result_t host_t::await_former_broker() {
    return former_broker.wait();
}

base::result_t host_t::check_ports() {
    return broker::check_ports({options.port, options.ws_port}, port_holder);
}

base::result_t host_t::open_database() {
    database = std::make_unique<database::database_t>();
    live_database_t::options_t live_options;
    live_options.save_delay_ms = torlan_option_t::DelayToSave();
    live_options.portion = elements_at_a_time;
    live_options.save_iterations = torlan_option_t::DelayIterationToForceSave();
    live = std::make_unique<live_database_t>(database.get(), live_options);
    connect(live.get(), &live_database_t::failed, this, [](const QString& _sentence) {
        utility::log_line(_sentence, 2, "operator()", source, __LINE__);
    });
    refusals = std::make_unique<refusal_teller_t>();
    connect(live->gate(), &write_gate_t::item_refused, refusals.get(), &refusal_teller_t::take);
    connect(refusals.get(), &refusal_teller_t::told, this, [](const QString& _sentence) {
        utility::log_line(_sentence, 3, "operator()", source, __LINE__);
    });
    bus = std::make_unique<simulated_bus_t>(database.get(), live->writer(), live->gate());
    open_bus();
    bus->simulate(options.simulate);
    const QString file = folder.file(database_name);
    const base::result_t imported = import.write(file);
    const base::result_t opened = imported.is_ok() ? live->open(file) : imported;
    if (opened.is_ok()) {
        read_bus_data();
    }
    return opened;
}

void host_t::open_bus() {
    if (options.knx.url.isEmpty()) {
        return;
    }
    knx = std::make_unique<database::live::live_bus_port_t>(database.get(), live->writer(),
                                                            live->gate(), options.knx);
    bus->leave_to(knx.get());
    connect(live->feed(), &change_feed_t::bus_data_changed, this, &host_t::read_bus_data);
}

void host_t::read_bus_data() {
    if (!knx) {
        return;
    }
    const auto read = live->read_bus_data();
    if (!read.is_ok()) {
        utility::log_line(read.error, 2, "read_bus_data", source, __LINE__);
        return;
    }
    knx->set_points(read.value.item_buses, read.value.scenario_buses);
}

base::result_t host_t::start_broker() {
    broker::broker_settings_t given;
    given.port = options.port;
    given.websocket_port = options.ws_port;
    given.connection_topic = connection_topic(*database);
    given.executable = options.broker_program;
    given.lock = former_broker.descriptor();
    given.port_holder = port_holder;
    given.session_idle = std::chrono::hours(options.session_hours);
    given.publishes_per_second = options.limits.publishes_per_second;
    given.publish_bytes_per_second = options.limits.publish_bytes_per_second;
    broker = std::make_unique<broker::broker_process_t>(given);
    accounts = std::make_unique<account_keeper_t>(broker.get(), live.get());
    door_log = std::make_unique<door_log_t>();
    connect(accounts.get(), &account_keeper_t::happened, door_log.get(), &door_log_t::tell);
    connect(broker.get(), &broker::broker_process_t::events_lost, door_log.get(),
            &door_log_t::tell_lost);
    trail.follow(*accounts, *broker);
    return accounts->start_broker();
}

base::result_t host_t::check_rights() {
    broker::rights_check_settings_t given;
    given.port = options.port;
    given.host_account = broker::broker_settings_t().host_account;
    given.host_password = broker->host_password();
    given.host_socket = broker->host_socket();
    given.broker_process = broker->process_id();
    given.probe_account = accounts->check_account();
    given.probe_password = accounts->check_password();
    given.connection_topic = connection_topic(*database);
    return broker::broker_rights_check_t(given).run();
}

base::result_t host_t::connect_endpoint() {
    comunication::endpoint_settings_t given;
    given.host = broker->host_socket();
    given.port = 0;
    given.broker_process = broker->process_id();
    given.username = broker::broker_settings_t().host_account;
    given.password = broker->host_password();
    given.connection_topic = connection_topic(*database);
    told_topic = given.connection_topic;
    given.tells_bus = knx != nullptr;
    given.requests = options.limits;
    given.packet_bytes = std::size_t(broker::broker_settings_t().packet_bytes);
    endpoint = std::make_unique<comunication::endpoint_thread_t>(given);

    connect(broker.get(), &broker::broker_process_t::listening, this, &host_t::on_new_broker);
    trail.follow(*endpoint->endpoint(), accounts->check_account());

    base::result_t result =
        base::result_t::failed(QStringLiteral("The broker did not let the host in in time."));
    QEventLoop loop;
    connect(endpoint->endpoint(), &mqtt_endpoint_t::connected, &loop, [&loop, &result]() {
        result = {};
        loop.quit();
    });
    connect(this, &host_t::broken_off, &loop, &QEventLoop::quit);
    QTimer::singleShot(connect_timeout, &loop, &QEventLoop::quit);
    endpoint->start();
    loop.exec();
    return result;
}

void host_t::on_new_broker() {
    mqtt_endpoint_t* const mqtt = endpoint->endpoint();
    QMetaObject::invokeMethod(
        mqtt,
        [mqtt, process = broker->process_id(), password = broker->host_password()]() {
            mqtt->set_broker(process, password);
        },
        Qt::QueuedConnection);
}

base::result_t host_t::start_drivers() {
    base::result_t taken = drivers.init(database.get(), endpoint->endpoint(), knx.get());
    if (taken.is_ok()) {
        set_up_connections();
        drivers.start();
    }
    return taken;
}

base::result_t host_t::show_elements() {
    QEventLoop loop;
    connect(live->feed(), &change_feed_t::shown, &loop, &QEventLoop::quit, Qt::QueuedConnection);
    connect(this, &host_t::broken_off, &loop, &QEventLoop::quit);
    live->feed()->show();
    loop.exec();
    return {};
}

base::result_t host_t::ask_api() {
    ready_probe_t::settings_t given;
    given.port = options.port;
    given.account = accounts->check_account();
    given.password = accounts->check_password();
    ready_probe_t probe(given);
    connect(this, &host_t::broken_off, &probe, &ready_probe_t::give_up);
    base::result_t answered = probe.run();
    accounts->end_checks();
    if (answered.is_ok()) {
        write_facts();
    }
    return answered;
}

void host_t::write_facts() const {
    if (options.console.isEmpty()) {
        return;
    }
    // The console lacks the state of the server then, and the rest runs.
    if (const base::result_t told = write_console_facts(folder.file(QStringLiteral("console.json")),
                                                        options.port, *database);
        !told.is_ok()) {
        utility::log_line(told.error, 2, "ask_api", source, __LINE__);
    }
}

void host_t::follow_topic() {
    const QString topic = connection_topic(*database);
    if (topic == told_topic) {
        return;
    }
    // Who may read it is told first.
    if (const base::result_t taken = broker->set_connection_topic(topic); !taken.is_ok()) {
        utility::log_line(taken.error, 2, __func__, source, __LINE__);
        return;
    }
    told_topic = topic;
    mqtt_endpoint_t* const mqtt = endpoint->endpoint();
    QMetaObject::invokeMethod(
        mqtt, [mqtt, topic]() { mqtt->set_connection_topic(topic); }, Qt::QueuedConnection);
    write_facts();
}

void host_t::set_up_connections() {
    mqtt_endpoint_t* const mqtt = endpoint->endpoint();
    // Before the notifiers' signals of the same batch: a removed user is locked out first.
    connect(live->feed(), &change_feed_t::users_changed, accounts.get(), &account_keeper_t::update);
    connect(live->feed(), &change_feed_t::reading_withdrawn, accounts.get(),
            &account_keeper_t::withdraw);
    connect(live->feed(), &change_feed_t::topic_changed, this, &host_t::follow_topic);
    trail.follow(*live->feed());
    hidden = std::make_unique<hidden_states_t>(database.get(), mqtt);
    connect(live->feed(), &change_feed_t::states_hidden, hidden.get(), &hidden_states_t::take);
    connect(live->feed(), &change_feed_t::access_changed, &sweep, &retained_sweep_t::trigger);
    connect(&sweep, &retained_sweep_t::due, this, &host_t::sweep_states);
    sweep_turns.know(database->getPersistent()->getData()->getUsers()->getUsernamesAPI(true));
    connect(accounts.get(), &account_keeper_t::users_read, &sweep_turns,
            [this](const auto& _before, const auto&) {
                for (const accounts::broker_account_t& user : _before) {
                    sweep_turns.know({user.name});
                }
            });
    connect(&sweep_turns, &sweep_turns_t::turn_of, mqtt, &mqtt_endpoint_t::show_states_of);
    if (knx) {
        connect(knx.get(), &database::live::live_bus_port_t::link_changed, mqtt,
                &mqtt_endpoint_t::set_bus);
    }
    pace = std::make_unique<drivers_pace_t>(mqtt);
    pace->set_pace_of(live->feed()->portions());
    pace->set_pace_of(hidden->portions());
    item_teller_t& values = live->writer()->teller();
    pace->set_pace_of(values.element_portions());
    // What waits at the endpoint gives way to newer states of its own.
    portions_t* const items = values.item_portions();
    connect(items, &portions_t::announced, &items_turn, &comunication::drivers_turn_t::begin);
    connect(&items_turn, &comunication::drivers_turn_t::over, items, &portions_t::taken);
    connect(mqtt, &mqtt_endpoint_t::connected, this, [this](bool _again) {
        // The private broker has lost what was retained.
        if (_again) {
            live->feed()->show_again();
        }
    });
    connect(mqtt, &mqtt_endpoint_t::states_lost, this, [this]() {
        live->feed()->show_again();
        sweep.trigger();
    });
}

void host_t::sweep_states() {
    const auto* data = database->getPersistent()->getData();
    const auto users = data->getUsers()->getUsernamesAPI(true);
    sweep_turns.know(users);
    const qsizetype states = users.size() * data->getElements()->getObjects().size();
    if (states > states_at_a_time && sweep_turns.is_complete()) {
        sweep_turns.begin();
        return;
    }
    mqtt_endpoint_t* const mqtt = endpoint->endpoint();
    QMetaObject::invokeMethod(
        mqtt,
        [mqtt]() { mqtt->subscription_status_api(comunication::utility::subscribe_t::subscribe); },
        Qt::QueuedConnection);
}

QString host_t::ready_text() const {
    const auto* data = database->getPersistent()->getData();
    QString text = QStringLiteral("torlan: ready on 127.0.0.1:%1").arg(options.port);
    if (options.ws_port != 0) {
        text += QStringLiteral(", WebSockets on 127.0.0.1:%1").arg(options.ws_port);
    }
    text += QStringLiteral(" (%1 elements, %2 users)\n")
                .arg(data->getElements()->getObjects().size())
                .arg(data->getUsers()->getObjects().size());
    if (!options.console.isEmpty()) {
        text += QStringLiteral("torlan: the console is at %1\n").arg(options.console);
    }
    if (const auto request = first_request_t::find(*database, *live->gate())) {
        text += request->text(torlanctl_call(options.data), import.password_of(request->user_id));
    }
    return text;
}

}  // namespace torlan
