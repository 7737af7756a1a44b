#pragma once

#include <QProcess>
#include <vector>

#include "base/result_t.h"
#include "bench/load/load_client_t.h"

namespace bench {

/// torlan-bench-echo in a process of its own, whose processor time can be told from all others.
class echo_process_t {
 public:
    enum class who_t { host, users };

    struct plan_t {
        std::vector<door_t> doors;  ///< the host's own, or one a user
        who_t who = who_t::users;
        std::string client;  ///< word that requests of this pair have
        int answer_qos = 2;
        std::size_t answer_bytes = 0;
        int users = 0;  ///< who get a state after each write
        std::size_t state_bytes = 0;
    };

    echo_process_t();
    /// Ends it.
    ~echo_process_t();
    Q_DISABLE_COPY_MOVE(echo_process_t)

    base::result_t start(const plan_t& _plan);
    qint64 pid() const { return process.processId(); }

 private:
    QProcess process;
};

}  // namespace bench
