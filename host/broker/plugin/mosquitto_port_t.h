#pragma once

#include "broker/plugin/broker_port_t.h"

namespace broker::plugin {

/// The broker that has loaded this plugin.
class mosquitto_port_t : public broker_port_t {
 public:
    void close_user(const std::string& _user) override;
    void close_client(const std::string& _id) override;
    bool has_session(const std::string& _id) override;
    void send(const std::string& _id, const std::string& _topic, const std::string& _text) override;
};

}  // namespace broker::plugin
