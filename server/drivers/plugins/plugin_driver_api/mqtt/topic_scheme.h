#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include "comunication/topic_publish_t.h"
#include "comunication/topic_subscribe_t.h"

/// The constant strings that every MQTT topic of the server is formed from. All stand in one
/// translation unit, in dependency order, and are built when the library is loaded.
namespace interfaces::topics {

// Placeholder tokens.
extern const QString destination;           ///< addressee: a device or client identifier
extern const QString sender;                ///< originator
extern const QString clientid;              ///< MQTT client identifier
extern const QString installation_id;       ///< the installation's identifier
extern const QString username;              ///< API user name
extern const QString bridgekey;             ///< key of a broker bridge
extern const QString version_brand_device;  ///< the device's brand and version word
extern const QString capability;            ///< capability name
extern const QString operation;             ///< operation on a capability, e.g. "read"

// Words.
extern const QString forward_bridge;
extern const QString cloud_bridge;
extern const QString local;
extern const QString persistent;
extern const QString realtime;
extern const QString presencesimulation;
extern const QString command_word;
extern const QString db_prefix;
extern const QString rr_request;
extern const QString rr_response;
extern const QString pairing;
extern const QString api;
extern const QString mqtt_to_knx_tun;
extern const QString sys;
extern const QString brand_device;

// Alternatives of regular expressions.
extern const QString channel_alternatives;
extern const QString correlation_alternatives;
extern const QString bridge_alternatives;

// Templates below the base "local/@installation_id/@sender/@destination".
extern const QStringList database_channels;  ///< "DB/persistent", ...
extern const QString base;
extern const QString connection;
extern const QString status;
extern const QStringList status_channels;
extern const QString request;
extern const QStringList request_channels;
extern const QString response_correlation;
extern const QString request_correlation;
extern const QString notification;
extern const QString command;
extern const QString client_ready;
extern const QString presentation;

// Pairing.
extern const QString pairing_root;
extern const QString pairing_response;
extern const QString pairing_request;

// Subscriptions of the MQTT API.
extern const QString api_wildcard;
extern const QString api_request_wildcard;
extern const QString api_status_wildcard;

// The broker's own topics.
extern const QString broker_connection;
extern const QString broker_connection_state;
extern const QString broker_client_connected;
extern const QString broker_client_disconnected;

// Capabilities of devices.
extern const QString devices_root;
extern const QString device_root;
extern const QString all_devices_root;
extern const QString capability_status;
extern const QString capability_status_wildcard;
extern const QString capability_request;
extern const QString capability_request_all;
extern const QString capability_request_wildcard;
extern const QString capability_request_all_wildcard;

// What the host subscribes to and how it publishes.
extern const QList<comunication::utility::topic_subscribe_t> subscribe_client_events;
extern const QList<comunication::utility::topic_subscribe_t> subscribe_default;
extern const QList<comunication::utility::topic_subscribe_t> subscribe_none;
extern const QList<comunication::utility::topic_subscribe_t> subscribe_capability_requests;
extern const QList<comunication::utility::topic_subscribe_t> subscribe_command;
extern const comunication::utility::topic_publish_t publish_client_ready;
extern const comunication::utility::topic_publish_t publish_presentation;
extern const comunication::utility::topic_publish_t publish_capability_status;
extern const comunication::utility::topic_publish_t publish_capability_request;

}  // namespace interfaces::topics
