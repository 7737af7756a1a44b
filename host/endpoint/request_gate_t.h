#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QJsonObject>
#include <QObject>
#include <functional>

#include "base/token_bucket_t.h"
#include "endpoint/endpoint_counters_t.h"
#include "endpoint/request_lanes_t.h"

namespace comunication {

/// Between the broker and the drivers: takes every request at once, passes few on at a time, in
/// turn among the users (a turn is one request, or some small ones in a row), and refuses what is
/// above the limits. While much waits for the broker it passes nothing on, so that answers cannot
/// pile up either.
///
/// On the endpoint's thread; the counters outlive it.
class request_gate_t : public QObject {
    Q_OBJECT

 public:
    /// @p _is_loaded whether so much waits for the broker that nothing is to be passed on.
    request_gate_t(const request_limits_t& _limits, endpoint_counters_t& _counts,
                   std::function<bool()> _is_loaded, QObject* _parent = nullptr);
    ~request_gate_t() override;

    /// Passes it on, keeps it until its turn, or refuses it.
    void take(request_t _request);

    /// Forgets what waits.
    void clear() { lanes.clear(); }

 public Q_SLOTS:
    /// Drivers have worked off the oldest request that was passed on.
    void give_back();

    /// Passes on what may be passed on by now; to be called when less waits for the
    /// broker.
    void pass_on();

 Q_SIGNALS:
    /// For the drivers; one give_back() answers each.
    void passed(const comunication::request_t& request, const QJsonObject& payload);
    /// To be answered with @p answer and to be forgotten first when there is no room for it.
    void refused(const QString& topic, const QJsonObject& answer);
    /// Each refused one, also where there was no room for an answer.
    void turned_away(const comunication::request_t& request, const QJsonObject& answer);

 private:
    /// What one user may do within a time.
    struct allowance_t {
        base::token_bucket_t requests;
        base::token_bucket_t refusals;
        base::token_bucket_t lines;  ///< of the log
    };
    using answer_t = QJsonObject (*)(const QString& _uuid);

    allowance_t& allowance_of(const QString& _user);
    void serve(const request_t& _first);
    bool read(const request_t& _request);
    void finish(const QString& _user);
    void finish_later(const QString& _user);
    void refuse(const request_t& _request, answer_t _answer);
    std::chrono::milliseconds now() const { return std::chrono::milliseconds(clock.elapsed()); }

    const request_limits_t limits;
    endpoint_counters_t& counts;
    const std::function<bool()> is_loaded;
    request_lanes_t lanes;
    QHash<QString, allowance_t> allowances;
    QElapsedTimer clock;
    std::deque<QString> passing;  ///< users of what was passed on and not given back
    QHash<QString, int> open;     ///< how many of each that are; these have their turn
    int reading = 0;              ///< read and refused, until others had their turn
};

}  // namespace comunication
