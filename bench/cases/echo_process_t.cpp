#include "bench/cases/echo_process_t.h"

#include "kit/end_with_test.h"

namespace bench {

namespace {

constexpr int longest_start_ms = 60'000;
constexpr int longest_end_ms = 5'000;

}  // namespace

echo_process_t::echo_process_t() {
    kit::end_with_test(&process);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
}

echo_process_t::~echo_process_t() {
    process.closeWriteChannel();
    if (!process.waitForFinished(longest_end_ms)) {
        process.kill();
        process.waitForFinished(longest_end_ms);
    }
}

base::result_t echo_process_t::start(const plan_t& _plan) {
    const door_t& first = _plan.doors.front();
    process.start(
        TORLAN_BENCH_ECHO,
        {QString::fromStdString(first.host), QString::number(first.port),
         QString::number(_plan.answer_qos), QString::number(_plan.answer_bytes),
         _plan.who == who_t::host ? "server" : "user", QString::fromStdString(_plan.client),
         QString::number(_plan.users), QString::number(_plan.state_bytes)});
    // Passwords are on no command line.
    for (const door_t& door : _plan.doors) {
        process.write(QByteArray::fromStdString(door.user + ' ' + door.password + '\n'));
    }
    process.write(". .\n");
    while (!process.canReadLine() && process.waitForReadyRead(longest_start_ms)) {
    }
    return process.readLine() == "ready\n"
               ? base::result_t()
               : base::result_t::failed("The echo of the raw pair did not start.");
}

}  // namespace bench
