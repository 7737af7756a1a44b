#pragma once

#include <QString>

namespace database::live {
class table_writer_t;
}

namespace database::base {

/// Carries the installation's topic, e.g. "installation/0001".
class topicbase_t {
 public:
    QString getTopic() const { return topic; }

 private:
    friend class live::table_writer_t;

    QString topic;
};

}  // namespace database::base
