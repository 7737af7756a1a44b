#pragma once

#include <QtGlobal>

namespace torlan {

struct options_t;

/// The process-wide options and what reads them from the configuration server, as long as it lives.
/// One at a time; main thread.
class option_singletons_t {
 public:
    /// Makes the options, as shipped or as the command line says; asks the device for its facts, up
    /// to 2 s each.
    explicit option_singletons_t(const options_t& _options);
    ~option_singletons_t();
    Q_DISABLE_COPY_MOVE(option_singletons_t)
};

}  // namespace torlan
