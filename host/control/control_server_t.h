#pragma once

#include <QHash>
#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>

#include "base/result_t.h"
#include "control/asker_t.h"
#include "control/control_place_t.h"

class QSocketNotifier;

namespace control {

/// Takes questions at the socket in a data folder, from the folder's owner and root only. Whoever
/// opens it holds the folder's lock. Never waits; thread with an event loop.
class control_server_t : public QObject {
    Q_OBJECT

 public:
    using answer_t = std::function<void(asker_t* _asker, const QJsonObject& _question)>;

    /// Who may ask at a time.
    static constexpr int most_askers = 16;

    explicit control_server_t(QObject* _parent = nullptr);
    /// close().
    ~control_server_t() override;

    /// Who answers questions of this word ("ask").
    void set_answer(const QString& _word, answer_t _answer);

    /// Listens, in the place of a socket that a killed server has left.
    base::result_t open(const QString& _folder);
    /// Sends everybody away and takes the socket away.
    void close();

 private:
    base::result_t listen();
    void on_connection();
    void take(int _connection);
    void on_asked(asker_t* _asker, const QJsonObject& _question);

    QHash<QString, answer_t> answers;
    std::unique_ptr<control_place_t> place;
    std::unique_ptr<QSocketNotifier> notifier;
    QTimer pause;  ///< after a connection for which the process had no descriptor left
    int listening = -1;
    int askers = 0;
};

}  // namespace control
