#pragma once

#include <QObject>
#include <QString>

#include "base/result_t.h"
#include "document_wait_t.h"
#include "option_singletons_t.h"
#include "options_t.h"

namespace torlan {

/// The server's settings: the process-wide options, filled from the configuration server once it
/// answers. One at a time; main thread, with an event loop.
class settings_t : public QObject {
    Q_OBJECT

 public:
    /// Makes the options.
    explicit settings_t(const options_t& _options, QObject* _parent = nullptr);
    /// The options go.
    ~settings_t() override;

    /// Waits for the configuration server, handling events meanwhile, and reads it; has the client
    /// file written and keeps what it tells, the broker's address and the installation id, in the
    /// settings. Ends the process when a new installation id cannot be stored.
    base::result_t read();

    /// Makes read() fail soon.
    void give_up() { document.give_up(); }

 Q_SIGNALS:
    /// read() has to wait; one sentence.
    void waiting(const QString& _sentence);

 private:
    const options_t options;
    const QString address;
    const option_singletons_t singletons;
    document_wait_t document;
};

}  // namespace torlan
