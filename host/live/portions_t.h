#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <deque>
#include <functional>
#include <set>

namespace database::live {

/// Announces things by their ids in portions, so that what drivers make of them never piles up.
/// What waits is announced once, however often it changes meanwhile.
///
/// Whoever listens to announced() answers each with taken() once drivers are done with that
/// portion; two are under way at most. Without a listener nothing is paced. Host thread only.
class portions_t : public QObject {
    Q_OBJECT

 public:
    /// @p _announce shows drivers one thing as it is now, or that it is gone. @p _size 0: any.
    portions_t(std::function<void(const QString& _id)> _announce, int _size,
               QObject* _parent = nullptr);
    /// The same of a whole portion. @p _size says how many of those that wait are the next one, at
    /// least one, by how many portions are under way.
    portions_t(std::function<void(const QStringList& _ids)> _announce,
               std::function<qsizetype(qsizetype _waiting, int _under_way)> _size,
               QObject* _parent = nullptr);
    ~portions_t() override;

    /// Announces these, behind those that wait; one that waits already keeps its place. At once, as
    /// far as nothing waits and they are no more than a portion.
    void add(const QStringList& _ids);
    /// The same before those that wait.
    void add_first(const QStringList& _ids);
    /// Announces this one behind all that waits, also when it waits further in front.
    void add_last(const QString& _id);
    /// Does nothing but wait for the listener, so that over() tells that all is done which others
    /// have announced or begun.
    void settle();

    /// Something waits or is under way.
    bool is_busy() const { return under_way > 0 || is_waiting(); }
    bool is_waiting() const { return !waiting.empty(); }

 public Q_SLOTS:
    /// The oldest portion that is under way has left.
    void taken();

 Q_SIGNALS:
    void announced();
    /// Nothing waits any more, and the last portion has left.
    void over();

 private:
    void go_on();
    void announce_portion();
    void send_off();
    bool is_paced() const;

    const std::function<void(const QStringList&)> announce;
    const std::function<qsizetype(qsizetype, int)> size;
    std::deque<QString> waiting;
    std::set<QString> known;  ///< what waits
    int under_way = 0;
};

}  // namespace database::live
