#pragma once

#include <QHash>
#include <QMap>
#include <QSet>
#include <memory>

#include "system/rights_matrix/asking.h"
#include "system/rights_matrix/door_t.h"
#include "system/rights_matrix/element_t.h"

namespace matrix {

/// A value for each element that none of them has: whoever writes them can be told by them.
using mark_t = QMap<QByteArray, QString>;

/// The user who may do everything: changes elements and sees what others have changed.
class warden_t {
 public:
    explicit warden_t(const ports_t& _ports);

    /// False: the server does not let him in.
    bool sign_in();

    mark_t new_mark();

    /// Writes the mark and waits until the states show it; false: they never did.
    bool write(const mark_t& _mark);
    /// Writes and waits for the answer only.
    void write_quickly(const mark_t& _mark);
    /// Reads each element, so that others could hear the answers.
    void read_each();

    /// The elements that the mark has got to, by whomever. What was asked of the server before is
    /// done.
    QSet<QByteArray> reached_by(const mark_t& _mark);
    /// Whether something with this text was published in his tree.
    bool has_heard(const QByteArray& _text);

    /// A last will of his own is due after this many seconds from now.
    void leave_will(int _seconds);
    /// Waits for it: those that others left before are done, too.
    bool wait_for_will();

    /// {"data": {id: {"functions": ...}}} of the elements in the mark.
    static QJsonObject list_write(const mark_t& _mark);

 private:
    /// A change of the fence lamp, behind all that was asked for before.
    bool fence();
    bool wait_for_fence(const char* _lamp, const QString& _value);
    void refresh();
    void absorb();
    std::unique_ptr<kit::raw_mqtt_t> come(const kit::raw_will_t& _will, const QByteArray& _id);

    const ports_t ports;
    std::unique_ptr<kit::raw_mqtt_t> client;
    int last_number = 1'000;
    QMap<QByteArray, QString> values;        ///< as last read
    QHash<QByteArray, QSet<QString>> shown;  ///< by states, since the last mark but few
    QString will_value;
};

}  // namespace matrix
