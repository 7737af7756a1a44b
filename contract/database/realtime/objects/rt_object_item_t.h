#pragma once

#include <QString>

namespace database::live {
class table_writer_t;
}

namespace database::realtime::objects {

/// The current value of an item.
class rt_object_item_t {
 public:
    explicit rt_object_item_t(QString _value) : value(std::move(_value)) {}

    QString getValue() const { return value; }

 private:
    friend class live::table_writer_t;

    QString value;
};

}  // namespace database::realtime::objects
