#pragma once

#include <QByteArray>

#include "settings_document_t.h"
#include "settings_path_t.h"

namespace torlan {

class settings_file_t;

/// Reads and writes settings values for clients: JSON in, JSON out.
class settings_service_t {
 public:
    /// Objects and arrays inside of each other, in the whole document.
    static constexpr int max_depth = 64;
    /// Documents up to this many bytes are stored one value a line, for people to read.
    static constexpr qsizetype max_readable_bytes = 64 * 1024;

    struct answer_t {
        int status = 200;
        QByteArray body;  ///< JSON: the value, or the error packet
    };

    /// @p _file is open and outlives this object.
    explicit settings_service_t(settings_file_t* _file) : file(_file) {}

    /// The value at @p _path.
    answer_t get(const settings_path_t& _path) const;

    /// Stores the JSON value @p _text at @p _path and answers it once the disk has it. One write
    /// at a time: call from one thread.
    answer_t put(const settings_path_t& _path, const QByteArray& _text) const;

 private:
    answer_t store(settings_document_t _document, const settings_path_t& _path,
                   const QJsonValue& _value) const;

    settings_file_t* const file;
};

}  // namespace torlan
