#pragma once

#include <memory>

#include "system/rights_matrix/asking.h"
#include "system/rights_matrix/tally_t.h"
#include "system/rights_matrix/warden_t.h"

namespace matrix {

/// Who comes by which door, and what he may do at this moment.
struct visit_plan_t {
    QString user;
    QString password;
    right_t right;
    door_t door;
    QString moment;
    bool waits_for_wills = true;  ///< delayed ones, which take a second
};

/// A user at a door: his first device, which has subscribed to his own tree, and others as they are
/// needed. Notes what comes of his attempts.
class visitor_t {
 public:
    visitor_t(const visit_plan_t& _plan, const ports_t& _ports, warden_t* _warden, tally_t* _tally);

    /// False: he is not let in.
    bool come();

    /// Another device of his; null: it is not let in.
    std::unique_ptr<kit::raw_mqtt_t> device(const QByteArray& _id,
                                            const kit::raw_connect_t& _as = {}) const;

    void note(path_t _path, const element_t& _element, outcome_t _seen);
    /// Some could not be tried, as a device of his was not let in.
    void miss(const char* _what);
    /// For who is not let in.
    void note(path_t _path, outcome_t _seen);
    /// Of a write: by its answers, and by what came of it.
    void note_writes(path_t _path, const QList<QJsonObject>& _answers, const mark_t& _mark);

    /// An identifier that no other device has, of any visitor.
    QByteArray new_id(const char* _what) const;

    const visit_plan_t plan;
    warden_t& warden;
    std::unique_ptr<kit::raw_mqtt_t> client;

 private:
    const ports_t ports;
    tally_t& tally;
};

}  // namespace matrix
