#pragma once

#include <QJsonObject>
#include <QObject>

#include "logs/log_settings_t.h"
#include "options_t.h"

namespace torlan {

/// The server's settings: makes the process-wide options, and fills them from the configuration
/// server once it answers. One at a time; main thread, with an event loop.
class settings_t : public QObject {
    Q_OBJECT

 public:
    /// Makes the options; asks the device for its facts, up to 2 s each.
    explicit settings_t(const options_t& _options, QObject* _parent = nullptr);
    /// The options go.
    ~settings_t() override;

    /// Waits for the configuration server, handling events meanwhile, and reads it; has the client
    /// file written and keeps what it tells, the broker's address and the installation id, in the
    /// settings. One sentence when it could not; empty: read. Ends the process when a new
    /// installation id cannot be stored.
    QString read();

    /// Makes read() return soon, with a sentence.
    void give_up();

    /// How to log. A folder that the settings do not name is @p _folder.
    utility::logs::log_settings_t log(const QString& _folder) const;

    /// Where drivers are: the command line's, else the settings', else beside the program.
    QString plugin_folder() const;

    /// Least wait between two saves of realtime values, and how many changes force one.
    int save_delay_ms() const;
    int save_iterations() const;

 Q_SIGNALS:
    /// read() has to wait; one sentence.
    void waiting(const QString& _sentence);
    void given_up();

 private:
    QString address() const;
    QString wait_for_document();
    void pause();
    QString text_at(const QString& _path) const;
    void tell_clients(const QString& _installation_id);
    void put(const QString& _path, const QJsonValue& _value);

    const options_t options;
    QJsonObject document;  ///< as the configuration server has it
    bool is_given_up = false;
};

}  // namespace torlan
