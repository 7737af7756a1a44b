// client read [ELEMENT] | write ELEMENT FUNCTION VALUE | follow; see README.md for the rest.
// g++ -std=c++20 client.cpp -o client -lmosquitto     (Debian's libmosquitto-dev and nlohmann-json3-dev)
#include <mosquitto.h>
#include <mqtt_protocol.h>
#include <unistd.h>
#include <iostream>
#include <nlohmann/json.hpp>
using nlohmann::json, std::string;
string set_as(const char* name, const char* otherwise = "") { return getenv(name) ? getenv(name) : otherwise; }
string verb, element, function, value;  // the words of the command line
const string root = "local/api/v1/" + set_as("TORLAN_USER"), list = "elements/objects_list", own = root + "/cpp" + std::to_string(getpid());
json home = json::object(), since = json::array();  // element: {function: value}; states since the question
bool passed_on = false;      // "202": no promise that the value comes
[[noreturn]] void end(int status, const string& text) { exit(((status ? std::cerr : std::cout) << text << std::endl, status)); }
void ask(mosquitto* broker, const string& what, const string& payload) {
    mosquitto_publish(broker, nullptr, (own + "/request/" + what).c_str(), int(payload.size()), payload.data(), 1, false);
}
void merge(const string& id, const json& data) {
    for (const json all = data.value("functions", json::object()); const auto& [name, state] : all.items()) {
        const string now = state["value"], former = std::exchange(home[id][name], now).dump();
        if (verb == "follow" && former != json(now).dump()) std::cout << id << ' ' << name << ' ' << now << std::endl;
    }
}
void on_connect(mosquitto* broker, void*, int reason) {  // the first time, and after every gap
    if (reason != 0) end(1, string("refused: ") + mosquitto_reason_string(reason));
    for (const string& all : {root + "/status/" + list + "/+", own + "/status/#"}) mosquitto_subscribe(broker, nullptr, all.c_str(), 1);
    since = json::array(), ask(broker, "get/" + list, "{}");  // behind both: one connection keeps its order
}
void on_message(mosquitto* broker, void*, const mosquitto_message* message) {
    const string topic = message->topic, text(static_cast<char*>(message->payload), size_t(message->payloadlen));
    json packet = text.empty() ? json() : json::parse(text);
    if (topic == own + "/status/get/" + list) {
        for (const auto& state : std::exchange(since, json()))  // they are newer than the answer
            state[1].is_null() ? void(packet["data"].erase(state[0])) : packet["data"][state[0].get<string>()]["functions"].update(state[1]["functions"]);
        const json former = std::exchange(home, json::object());
        for (const auto& [id, data] : packet["data"].items()) merge(id, (home[id] = former.value(id, json::object()), data));
        if (verb == "read") element.empty() || home.contains(element) ? end(0, (element.empty() ? home : home[element]).dump()) : end(1, element + " cannot be read");
        if (verb == "write") ask(broker, "set/" + list + '/' + element, json{{"data", {{"functions", {{function, json::parse(value)}}}}}}.dump());
    } else if (topic == own + "/status/set/" + list + '/' + element) {
        if (!(passed_on = packet.value(json::json_pointer("/data/functions") / function, "") == "202")) end(1, "refused: " + text);
    } else if (const string id = topic.substr(topic.rfind('/') + 1); true) {  // a state; without a text the element is gone
        if (since.is_array()) since.push_back({id, text.empty() ? json() : packet["data"]});
        text.empty() ? void(home.erase(id)) : merge(id, packet["data"]);
    }
    if (passed_on && home.value(element, json::object()).value(function, "") == value) end(0, element + ' ' + function + ' ' + value);
}
int main(int count, char** words) {
    for (int i = 1; i < count && i < 5; ++i) *std::array{&verb, &element, &function, &value}[size_t(i - 1)] = words[i];
    if (!(verb == "read" ? count < 4 : verb == "write" ? count == 5 : verb == "follow" && count == 2)) end(1, "read [ELEMENT] | write ELEMENT FUNCTION VALUE | follow");
    mosquitto* const broker = (mosquitto_lib_init(), mosquitto_new(nullptr, true, nullptr));
    mosquitto_int_option(broker, MOSQ_OPT_PROTOCOL_VERSION, MQTT_PROTOCOL_V5);
    mosquitto_username_pw_set(broker, set_as("TORLAN_USER").c_str(), set_as("TORLAN_PASSWORD").c_str());
    mosquitto_connect_callback_set(broker, on_connect);
    mosquitto_message_callback_set(broker, on_message);
    mosquitto_connect(broker, set_as("TORLAN_HOST", "127.0.0.1").c_str(), std::stoi(set_as("TORLAN_PORT", "1883")), 60);
    for (const time_t end = time(nullptr) + std::stoi(set_as("TORLAN_WAIT", "10")); verb == "follow" || time(nullptr) < end;)
        if (mosquitto_loop(broker, 500, 1) != MOSQ_ERR_SUCCESS) sleep(1), mosquitto_reconnect(broker);
    end(1, "no answer, or " + element + ' ' + function + " is not " + value + " in time");
}
