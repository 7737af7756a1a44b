#pragma once

#include <QObject>
#include <QStringList>
#include <QTimer>
#include <chrono>
#include <set>

namespace torlan {

/// Whose retained states are looked at next: one user's at a time, with pauses. A request waits
/// behind whatever the broker has been asked for before it, and all states of a large installation
/// take seconds.
class sweep_turns_t : public QObject {
    Q_OBJECT

 public:
    static constexpr std::chrono::milliseconds usual_pause{500};
    /// So many names are remembered; whose are more is told by is_complete().
    static constexpr std::size_t most_names = 10'000;

    explicit sweep_turns_t(std::chrono::milliseconds _pause = usual_pause,
                           QObject* _parent = nullptr);
    ~sweep_turns_t() override;

    /// States of these may lie on the broker from now on.
    void know(const QStringList& _users);
    /// False: there were more names than are remembered.
    bool is_complete() const { return complete; }

 public Q_SLOTS:
    /// A turn of each name that is known follows; one that waits for its turn already has only
    /// that.
    void begin();

 Q_SIGNALS:
    void turn_of(const QString& _user);

 private:
    void next();

    std::set<QString> names;
    QStringList waiting;
    QTimer timer;
    bool complete = true;
};

}  // namespace torlan
