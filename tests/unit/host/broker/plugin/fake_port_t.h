#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "broker/plugin/broker_port_t.h"

/// A broker that writes down what it is asked to do.
class fake_port_t : public broker::plugin::broker_port_t {
 public:
    struct sent_t {
        std::string id;
        std::string topic;
        std::string text;
        bool operator==(const sent_t&) const = default;
    };

    void close_user(const std::string& _user) override {
        closed.push_back(_user);
        if (on_close) {
            on_close(_user);
        }
    }
    void close_client(const std::string& _id) override { closed_clients.push_back(_id); }
    bool has_session(const std::string& _id) override {
        ++questions;
        return kept.count(_id) != 0;
    }
    void send(const std::string& _id, const std::string& _topic,
              const std::string& _text) override {
        sent.push_back({_id, _topic, _text});
    }

    std::vector<std::string> closed;          ///< users
    std::vector<std::string> closed_clients;  ///< by identifier
    std::vector<sent_t> sent;
    std::set<std::string> kept;  ///< sessions
    std::function<void(const std::string&)> on_close;
    int questions = 0;
};
