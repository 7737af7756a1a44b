#pragma once

#include <QObject>

#include "database/realtime/dbs/rt_items_t.h"
#include "database/realtime/dbs/rt_scenary_t.h"
#include "database/realtime/rt_notifier_t.h"

namespace database::live {
class table_writer_t;
}

namespace database::realtime {

/// The realtime side: current values. Host thread only.
class realtime_t : public QObject {
    Q_OBJECT

 public:
    explicit realtime_t(QObject* _parent = nullptr);
    ~realtime_t() override;

    const dbs::rt_items_t* getItems() const { return &items; }
    const dbs::rt_scenary_t* getScenary() const { return &scenary; }
    rt_notifier_t* getNotifier() const { return notifier; }

 private:
    friend class live::table_writer_t;

    dbs::rt_items_t items;
    dbs::rt_scenary_t scenary;
    rt_notifier_t* const notifier;
};

}  // namespace database::realtime
