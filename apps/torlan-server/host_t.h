#pragma once

#include <QObject>
#include <memory>

#include "account_keeper_t.h"
#include "audit_trail_t.h"
#include "base/result_t.h"
#include "broker/broker_process_t.h"
#include "control_desk_t.h"
#include "data_folder_t.h"
#include "door_log_t.h"
#include "driver_set_t.h"
#include "drivers_pace_t.h"
#include "endpoint/endpoint_thread_t.h"
#include "former_broker_t.h"
#include "hidden_states_t.h"
#include "installation_import_t.h"
#include "live/live_bus_port_t.h"
#include "live/live_database_t.h"
#include "live/refusal_teller_t.h"
#include "live/simulated_bus_t.h"
#include "logs/early_logger_t.h"
#include "logs/error_ring_t.h"
#include "logs/spdlog_logger_t.h"
#include "options_t.h"
#include "retained_sweep_t.h"
#include "settings_t.h"
#include "sweep_turns_t.h"

namespace torlan {

/// The running host: the one place that builds the object graph, and the duties that hang between
/// its parts. Main thread, with an event loop.
class host_t : public QObject {
    Q_OBJECT

 public:
    /// @param _early the logger of the start; what it has kept goes into the log. Not owned.
    host_t(const options_t& _options, utility::logs::early_logger_t* _early,
           QObject* _parent = nullptr);
    /// stop(), if nobody has.
    ~host_t() override;

    /// Builds and starts everything, handling events meanwhile; returns once the API has answered
    /// through the broker. After a failure nothing is left running and no new folder left behind.
    /// Once only.
    base::result_t start();

    /// Makes a start() that is under way give up soon.
    void break_off();

    /// Ends everything within seconds; values are saved. A failure says which are not, and why.
    base::result_t stop();

    /// What to print once it runs: where the API is, and a request to paste.
    QString ready_text() const;

 Q_SIGNALS:
    /// start() has to wait for another program; one sentence.
    void waiting(const QString& _sentence);
    void broken_off();

 private:
    base::result_t read_import();
    base::result_t open_folder();
    base::result_t read_settings();
    base::result_t open_log();
    void describe(const QString& _log, const QString& _audit);
    base::result_t load_drivers();
    base::result_t await_former_broker();
    base::result_t check_ports();
    base::result_t open_database();
    base::result_t start_broker();
    base::result_t check_rights();
    base::result_t connect_endpoint();
    base::result_t start_drivers();
    base::result_t show_elements();
    base::result_t ask_api();
    void set_up_connections();
    void on_new_broker();
    void sweep_states();
    void follow_topic();
    void write_facts() const;
    void open_bus();
    void read_bus_data();

    const options_t options;
    utility::logs::early_logger_t* const early;
    bool given_up = false;
    installation_import_t import;
    data_folder_t folder;
    former_broker_t former_broker;
    settings_t settings;
    // What stands above outlives what stands below.
    std::unique_ptr<utility::logs::spdlog_logger_t> logger;
    audit_trail_t trail;
    std::unique_ptr<database::database_t> database;
    std::unique_ptr<database::live::live_database_t> live;
    std::unique_ptr<database::live::refusal_teller_t> refusals;
    std::unique_ptr<database::live::live_bus_port_t> knx;  ///< null: there is no bus
    std::unique_ptr<database::live::simulated_bus_t> bus;
    std::unique_ptr<broker::broker_process_t> broker;
    std::unique_ptr<account_keeper_t> accounts;
    std::unique_ptr<door_log_t> door_log;
    std::unique_ptr<comunication::endpoint_thread_t> endpoint;
    std::unique_ptr<hidden_states_t> hidden;
    std::unique_ptr<drivers_pace_t> pace;
    comunication::drivers_turn_t items_turn;
    retained_sweep_t sweep;
    sweep_turns_t sweep_turns;
    QString told_topic;  ///< where the connection's state is told
    driver_set_t drivers;
    utility::logs::error_ring_t errors;
    control_desk_t desk;
};

}  // namespace torlan
