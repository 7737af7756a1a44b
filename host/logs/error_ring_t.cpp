#include "logs/error_ring_t.h"

namespace utility::logs {

namespace {

/// The gravest levels up to errors.
constexpr int highest_level = 2;

}  // namespace

error_ring_t::~error_ring_t() = default;

void error_ring_t::log_asynch(const QString& _message, int _level, const QString& _function,
                              const QString& _source, int _line) {
    if (_level <= highest_level) {
        const QMutexLocker locker(&mutex);
        if (kept.size() >= most_errors) {
            kept.removeFirst();
        }
        kept.append({QDateTime::currentDateTimeUtc(), _message.left(longest_error)});
    }
    if (logger != nullptr) {
        logger->log_asynch(_message, _level, _function, _source, _line);
    }
}

QList<error_ring_t::error_t> error_ring_t::errors() const {
    const QMutexLocker locker(&mutex);
    return kept;
}

}  // namespace utility::logs
