#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>
#include <memory>
#include <vector>

#include "base/result_t.h"
#include "bench/load/load_t.h"

namespace bench {

/// One of those that are measured in turn on the same work: its load, the processes that do the
/// work, and what each round has given.
class lane_t {
 public:
    struct process_t {
        QString name;
        qint64 pid;
    };

    lane_t(QString _name, std::unique_ptr<load_t> _load, QList<process_t> _processes);

    base::result_t sign_in();
    /// One round that counts, or one that warms up.
    base::result_t run(bool _counts);
    /// {"name", "rate" (a second), "median", "p99" (us), "cpu" {process: us a request},
    /// "latencies"}: an array of one value a round each, but for the last: percentiles of all.
    QJsonObject json() const;
    /// Of what came last.
    std::size_t bytes() const { return size; }

 private:
    void note(const load_result_t& _result, const std::vector<double>& _before);

    const QString name;
    const QList<process_t> processes;
    const std::unique_ptr<load_t> load;
    std::size_t size = 0;
    std::vector<double> rates;
    std::vector<double> medians;
    std::vector<double> p99s;
    std::vector<std::vector<double>> costs;  ///< by process
    std::vector<double> all_waits;
};

}  // namespace bench
