#pragma once

#include <QString>
#include <QStringList>

namespace broker {

/// Topics that an API user must not write, one of each kind.
struct forbidden_topics_t {
    QString foreign_request;  ///< of another user
    QString foreign_status;   ///< of another user
    QString own_status;       ///< the API alone tells states
    QString own_answer;       ///< and answers
    QString elsewhere;        ///< outside the API
    QString system;           ///< the broker's own

    /// @p _own, @p _other: above everything of the user and of another one; @p _token: the last
    /// level, which nobody else uses.
    static forbidden_topics_t below(const QString& _own, const QString& _other,
                                    const QString& _token) {
        return {.foreign_request = _other + QStringLiteral("/check/request/") + _token,
                .foreign_status = _other + QStringLiteral("/status/") + _token,
                .own_status = _own + QStringLiteral("/status/") + _token,
                .own_answer = _own + QStringLiteral("/check/status/") + _token,
                .elsewhere = QStringLiteral("torlan-check/") + _token,
                .system = QStringLiteral("$SYS/") + _token};
    }

    QStringList all() const {
        return {foreign_request, foreign_status, own_status, own_answer, elsewhere, system};
    }

    /// Those among them that the user must not read either.
    QStringList unreadable() const { return {foreign_request, foreign_status, elsewhere}; }
};

}  // namespace broker
