#include "system/support/fault_t.h"

#include <signal.h>

#include <QTcpServer>
#include <QTest>

#include "kit/has_ended.h"
#include "kit/wait_until.h"
#include "system/support/database_shell_t.h"

namespace support {

namespace {

using port_t = quint16 (run_process_t::*)() const;

void halt(run_process_t& _run, const char* _program, int _lasting_ms) {
    const qint64 process = _run.descendant(_program);
    QVERIFY(process > 1);
    ::kill(pid_t(process), SIGSTOP);
    kit::wait_until([process]() { return kit::has_ended(process); }, _lasting_ms);
    ::kill(pid_t(process), SIGCONT);
}

void take_port(run_process_t& _run, const char* _program, port_t _port, int _lasting_ms) {
    const qint64 process = _run.descendant(_program);
    QVERIFY(process > 1);
    QTcpServer stranger;
    ::kill(pid_t(process), SIGKILL);
    // Before its next life, 0.2 s later.
    const bool is_taken = kit::wait_until(
        [&]() { return stranger.listen(QHostAddress::LocalHost, (_run.*_port)()); }, 1'000);
    QVERIFY(is_taken);
    QTest::qWait(_lasting_ms);
}

}  // namespace

std::vector<fault_t> halts(int _lasting_ms) {
    std::vector<fault_t> faults;
    for (const char* const program : {"mosquitto", "torlan-server", "torlan-config"}) {
        faults.push_back({program, [=](run_process_t& _run) { halt(_run, program, _lasting_ms); }});
    }
    return faults;
}

std::vector<fault_t> taken_ports(int _lasting_ms) {
    struct place_t {
        const char* name;
        const char* program;
        port_t port;
    };
    std::vector<fault_t> faults;
    for (const place_t& place :
         {place_t{"API port", "mosquitto", &run_process_t::port},
          place_t{"WebSockets port", "mosquitto", &run_process_t::ws_port},
          place_t{"web port", "torlan-web", &run_process_t::web_port},
          place_t{"configuration port", "torlan-config", &run_process_t::config_port}}) {
        faults.push_back({place.name, [=](run_process_t& _run) {
                              take_port(_run, place.program, place.port, _lasting_ms);
                          }});
    }
    return faults;
}

std::vector<fault_t> locks(int _lasting_ms) {
    return {{"database locked", [=](run_process_t& _run) {
                 const database_shell_t other(_run.data() + "/installation.db");
                 QVERIFY(other.run("BEGIN IMMEDIATE"));
                 QTest::qWait(_lasting_ms);
                 QVERIFY(other.run("ROLLBACK"));
             }}};
}

}  // namespace support
