#pragma once

#include <QByteArray>
#include <QList>
#include <QSet>
#include <QString>

#include "accounts/broker_account_t.h"

namespace accounts {

/// The messages that the broker's plugin understands, see plugin/control_message_t.h. Pure.
namespace control_text {

constexpr const char* topic = "$CONTROL/torlan/v1";
constexpr const char* answer_topic = "$CONTROL/torlan/v1/answer";
constexpr const char* report_topic = "$CONTROL/torlan/v1/report";

struct change_t {
    QList<broker_account_t> accounts;  ///< new or with another password
    QSet<QString> ended;               ///< names whose account up to now is none any more
    QSet<QString> withdrawn;           ///< users who may read something no longer

    bool is_empty() const { return accounts.isEmpty() && ended.isEmpty() && withdrawn.isEmpty(); }
};

/// Whether it can stand in a row: the broker's plugin would misread anything else.
bool is_word(const QString& _text);

/// Everything: whoever is not among the change's accounts has none. Accounts and names that are no
/// words are left out.
QByteArray all(quint64 _number, const QString& _connection_topic, const change_t& _change);
QByteArray change(quint64 _number, const change_t& _change);
QByteArray seen(quint64 _number);

}  // namespace control_text
}  // namespace accounts
