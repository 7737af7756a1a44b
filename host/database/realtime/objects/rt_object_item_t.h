#pragma once

#include <QString>

namespace database::realtime::objects {

/// The current value of an item.
class rt_object_item_t {
 public:
    explicit rt_object_item_t(QString _value) : value(std::move(_value)) {}

    QString getValue() const { return value; }
    void setValue(const QString& _value) { value = _value; }

 private:
    QString value;
};

}  // namespace database::realtime::objects
