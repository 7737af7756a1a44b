#pragma once

#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QSet>
#include <QString>

namespace torlan {

/// What an API user knows of elements: answers of reads, and states, which hold what has changed
/// only. No connection, no clock.
class readings_t {
 public:
    /// What is another than before.
    struct change_t {
        QString element;
        QString function{};  ///< empty: the element is gone, or no longer this user's
        QString value{};

        bool operator==(const change_t&) const = default;
    };
    using changes_t = QList<change_t>;
    using values_t = QMap<QString, QString>;  ///< by function

    /// A read of all has been asked: what comes until its answer is newer than that.
    void begin_read();
    /// The answer to it: what it does not name is gone.
    changes_t take_all(const QJsonObject& _data);
    /// A state; an empty object: it was withdrawn.
    changes_t take_state(const QString& _element, const QJsonObject& _data);

    /// Empty: not known.
    values_t values(const QString& _element) const { return elements.value(_element); }

    /// The functions of a state or of an answer about one element.
    static values_t values_in(const QJsonObject& _data);

 private:
    void set(const QString& _element, const QString& _function, const QString& _value,
             changes_t* _changes);
    changes_t remove(const QString& _element);

    QHash<QString, values_t> elements;
    // Between a question and its answer.
    bool is_reading = false;
    QHash<QString, QSet<QString>> newer;  ///< functions that a state has named
    QSet<QString> withdrawn;
};

}  // namespace torlan
