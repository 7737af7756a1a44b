#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>
#include <memory>

#include "contract/support/loaded_plugin_t.h"
#include "fakes/memory_database_t.h"

namespace support {

/// Plays one transcript against the loaded plugin: an installation, messages that the broker
/// holds before, then steps. tests/data/transcripts/README.md tells the form.
class transcript_t {
 public:
    explicit transcript_t(const QJsonObject& _document);
    ~transcript_t();
    Q_DISABLE_COPY_MOVE(transcript_t)

    bool is_ready() const { return driver != nullptr; }
    /// Plays one step and gives what came of it, in order: publications, deletions, subscription
    /// changes, and what the bus was asked for. Sorted, unless the step says "ordered".
    QJsonArray play(const QJsonObject& _step);

 private:
    void act(const QJsonObject& _step);
    void deliver(const QJsonObject& _message);
    void grant(const QJsonObject& _grant);
    void remove_user(const QString& _id);
    void resubscribe();
    /// Lets a timer of the plugin that waits for @p _interval_ms fire now.
    void finish_wait(int _interval_ms);
    QList<QJsonObject> asked();

    loaded_plugin_t plugin;
    fakes::memory_database_t home;
    fakes::endpoint_thread_t endpoint;
    std::unique_ptr<interfaces::plugin_driver_interface_t> driver;
};

/// The lines that differ, "- " expected and "+ " actual; empty when both are equal.
QString difference(const QJsonArray& _expected, const QJsonArray& _actual);

}  // namespace support
