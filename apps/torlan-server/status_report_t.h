#pragma once

#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <optional>

#include "account_keeper_t.h"
#include "database/database_t.h"
#include "endpoint/endpoint_counters_t.h"
#include "logs/error_ring_t.h"

namespace torlan {

/// What a server tells of itself to its owner's tools; no secret. Main thread.
class status_report_t {
 public:
    /// What it was started with.
    struct facts_t {
        QString data;   ///< folder
        QString log;    ///< file; empty: not open yet
        QString audit;  ///< file
        quint16 port = 0;
        quint16 ws_port = 0;      ///< 0: none
        quint16 config_port = 0;  ///< of the configuration server
    };
    /// What there is when it has started. Not owned.
    struct parts_t {
        const database::database_t* database;
        const broker::broker_process_t* broker;
        const account_keeper_t* accounts;
        const comunication::endpoint_counters_t* counts;
    };

    explicit status_report_t(const utility::logs::error_ring_t* _errors);

    void set_facts(const facts_t& _facts) { facts = _facts; }
    /// For what the start waits, a sentence.
    void set_waiting(const QString& _sentence) { waiting = _sentence; }
    /// Nothing: it is starting, or stopping.
    void set_parts(const std::optional<parts_t>& _parts) { parts = _parts; }

    bool is_started() const { return parts.has_value(); }

    QJsonObject json() const;

 private:
    QJsonObject server_json() const;
    QJsonArray errors_json() const;

    const utility::logs::error_ring_t* const errors;
    const QDateTime since;
    facts_t facts;
    QString waiting;
    std::optional<parts_t> parts;
};

}  // namespace torlan
