#pragma once

#include <QString>

namespace torlan {

/// A device whose items hang together. It has its items' values in the house's points.
class house_device_t {
 public:
    house_device_t() = default;
    virtual ~house_device_t() = default;
    house_device_t(const house_device_t&) = delete;
    house_device_t& operator=(const house_device_t&) = delete;

    /// The bus says that item @p _id, one of its own, is to become @p _value.
    virtual void write(const QString& _id, double _value) = 0;

    /// A pass of time, see house_t::pass().
    virtual void pass(int _pass) = 0;
};

}  // namespace torlan
