#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QStringList>

#include "api/api_session_t.h"
#include "api/readings_t.h"

namespace torlan {

/// Knows the values of elements as long as it runs: reads them, follows their states, and begins
/// again after each gap.
class watcher_t : public QObject {
    Q_OBJECT

 public:
    /// @p _elements empty: all that the user may read
    watcher_t(const api_account_t& _account, QStringList _elements, QObject* _parent = nullptr);

    /// Until it is stopped, or the user is not let in. The first sign-in and answer have to come,
    /// unless the connection is lost meanwhile.
    outcome_t run();
    void stop() { session.give_up(); }

 Q_SIGNALS:
    /// At the beginning each value is one.
    void changed(const torlan::readings_t::change_t& _change);
    /// For people: what is with the connection, or with an element.
    void noted(const QString& _sentence);

 private:
    outcome_t begin();
    outcome_t follow();
    outcome_t read();
    outcome_t read_one(const QString& _element, QJsonObject* _data);
    void tell(const readings_t::changes_t& _changes);

    /// Whether it is of no use to try again.
    bool is_over(const outcome_t& _begun);
    void rest();

    const std::chrono::milliseconds patience;
    const QStringList elements;
    api_session_t session;
    readings_t readings;
    bool was_let_in = false;      ///< in the last attempt
    QElapsedTimer refused_since;  ///< invalid: the last attempt was not refused
};

}  // namespace torlan
