#pragma once

#include <QElapsedTimer>
#include <memory>
#include <vector>

#include "system/rights_matrix/change_t.h"
#include "system/rights_matrix/visitor_t.h"

namespace matrix {

/// A user who has every right until a change, with connections, sessions and last wills that are
/// older than it, at every door.
class victim_t {
 public:
    /// Milliseconds from the commit, by when it was noticed; -1: it was not.
    struct times_t {
        qint64 effective = -1;       ///< the first answer that knows of the change
        qint64 last_delivered = -1;  ///< a state, or an answer with data, that was not to come any
                                     ///< more; -1: none came
        qint64 retained_gone = -1;
    };

    victim_t(change_t _change, bool _storm, const ports_t& _ports, const QList<door_t>& _doors,
             warden_t* _warden, tally_t* _tally);

    /// Before the change. False: something was not let in.
    bool prepare();
    /// After another grant: until he may do everything again. False: he never may.
    bool wait_until_granted();
    /// What is due after the change, in seconds: to be left right before it.
    void leave_wills(int _seconds);
    /// From the commit on, which @p _clock counts from, until the change is effective, but no
    /// longer than @p _limit_ms: then what comes is a leak.
    times_t watch(const QElapsedTimer& _clock, int _limit_ms);

    /// What the old things still give.
    void judge_connections(const QString& _moment);
    void judge_sessions(const QString& _moment);
    /// After they were due.
    void judge_wills(const QString& _moment);
    /// Everything anew, by each door.
    void visit_all(const QString& _moment, bool _waits_for_wills);
    /// So that the broker does not end the old connections as silent ones.
    void keep_alive();

    const change_t change;
    const QString user;

 private:
    struct old_t {
        std::unique_ptr<visitor_t> visitor;
        std::unique_ptr<kit::raw_mqtt_t> connection;
        QByteArray session;
        mark_t will;
    };

    visit_plan_t plan(const door_t& _door, const QString& _moment) const;
    bool is_effective(kit::raw_mqtt_t& _client) const;
    qint64 wait_for_no_retained(const QElapsedTimer& _clock, int _limit_ms);
    void note(right_t _right, const door_t& _door, const QString& _moment, path_t _path,
              const element_t& _element, outcome_t _seen);

    const right_t right;
    const ports_t ports;
    const QList<door_t> doors;
    warden_t& warden;
    tally_t& tally;
    std::vector<old_t> olds;
};

}  // namespace matrix
