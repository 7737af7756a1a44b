#pragma once

#include <QObject>
#include <QTcpSocket>
#include <QTimer>

#include "gate/gate_rules_t.h"

namespace torlan {

/// One connection until its one request is whole and allowed.
///
/// The HTTP server behind keeps whatever a client sends, of any size and for any time. So it gets a
/// connection only when the whole request is here, judged and bounded, and exactly once; what is
/// refused is answered here, without having been kept.
class request_gate_t : public QObject {
    Q_OBJECT

 public:
    /// Watches @p _socket and becomes its child.
    request_gate_t(QTcpSocket* _socket, const gate_rules_t& _rules);

    /// Answers with @p _refusal and closes.
    void refuse(const refusal_t& _refusal);

 Q_SIGNALS:
    /// The socket holds one whole, allowed request; its next readyRead() is for the server behind.
    void passed(QTcpSocket* _socket);

 private:
    void examine();
    void examine_body();
    void pass();
    void take_out_expectation();
    void close_when_sent();
    void on_late();

    QTcpSocket* const socket;
    const gate_rules_t rules;
    QTimer limit;
    qint64 whole_bytes = 0;  ///< of head and body; 0: the head is not known yet
    qint64 head_bytes = 0;
    bool expects_go_on = false;
    bool is_decided = false;
};

}  // namespace torlan
