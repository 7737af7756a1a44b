#pragma once

#include <QObject>

#include "database/base/topicbase_t.h"
#include "database/persistent/ps_data_t.h"
#include "database/persistent/ps_notifier_t.h"
#include "database/persistent/ps_requests_t.h"

namespace database::live {
class table_writer_t;
}

namespace database::persistent {

/// The persistent side: what the installation is made of.
class persistent_t : public QObject {
    Q_OBJECT

 public:
    explicit persistent_t(QObject* _parent = nullptr);
    ~persistent_t() override;

    /// Carrier of the installation's topic; never null.
    const base::topicbase_t* getTopicbase() const { return &topicbase; }
    const ps_data_t* getData() const { return &data; }
    ps_notifier_t* getNotifier() const { return notifier; }
    ps_requests_t* getRequests() const { return requests; }

 private:
    friend class live::table_writer_t;

    base::topicbase_t topicbase;
    ps_notifier_t* const notifier;
    ps_requests_t* const requests;
    ps_data_t data;
};

}  // namespace database::persistent
