#pragma once

#include <QString>

namespace database::base {

/// Carries the installation's topic, e.g. "installation/0001".
class topicbase_t {
 public:
    QString getTopic() const { return topic; }
    void setTopic(const QString& _topic) { topic = _topic; }

 private:
    QString topic;
};

}  // namespace database::base
