#pragma once

#include <QObject>
#include <QPointer>
#include <optional>

#include "account_keeper_t.h"
#include "bus_watch_t.h"
#include "control/control_server_t.h"
#include "effect_watch_t.h"
#include "live/live_bus_port_t.h"
#include "live/live_database_t.h"
#include "retained_check_t.h"
#include "status_report_t.h"

namespace torlan {

/// What the server tells its owner's tools, at the socket in the data folder. Main thread.
class control_desk_t : public QObject {
    Q_OBJECT

 public:
    /// The running host.
    struct parts_t {
        database::database_t* database;
        database::live::live_database_t* live;
        broker::broker_process_t* broker;
        account_keeper_t* accounts;
        comunication::mqtt_endpoint_t* endpoint;
        database::live::live_bus_port_t* bus;  ///< null: none
    };

    /// @p _errors outlives this object
    explicit control_desk_t(const utility::logs::error_ring_t* _errors, QObject* _parent = nullptr);
    ~control_desk_t() override;

    /// Answers from now on, in a folder that is locked; until follow(), that it is starting. A
    /// folder that can hold no socket is told in the log: the server is of use without.
    void open(const QString& _folder);

    /// What the server was started with, as far as it is known.
    void describe(const status_report_t::facts_t& _facts) { report.set_facts(_facts); }
    /// For what the start waits.
    void set_waiting(const QString& _sentence) { report.set_waiting(_sentence); }

    /// It has started. The parts stay until close().
    void follow(const parts_t& _parts);

    void close();

 private:
    void show_status(control::asker_t* _asker) const;
    void check_retained(control::asker_t* _asker);

    effect_watch_t effects;
    bus_watch_t bus;
    status_report_t report;
    std::optional<parts_t> parts;
    QPointer<retained_check_t> retained;  ///< that runs; one at a time
    control::control_server_t server;
};

}  // namespace torlan
