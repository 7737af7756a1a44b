#pragma once

#include <QIODevice>
#include <QString>
#include <QXmlStreamReader>

#include "base/result_t.h"
#include "ets/metered_device_t.h"
#include "ets/progress_t.h"

namespace ets {

/// Walks over the elements of an XML file, from a source that nobody vouches for: no document type
/// and so no entities of its own, tags and texts of a bounded size, a bounded depth.
class xml_walk_t {
 public:
    /// @param _name stands in front of the error and in the progress
    xml_walk_t(QIODevice* _source, QString _name, progress_t _progress = {});

    /// To the next begin or end of an element. False: the document has ended, well or not.
    bool next();

    /// Whether it is a begin.
    bool is_start() const { return reader.isStartElement(); }
    QStringView element() const { return reader.name(); }
    QStringView element_namespace() const { return reader.namespaceUri(); }
    /// Elements around this one, itself included: 1 is the root.
    int depth() const { return now + (is_start() ? 0 : 1); }

    /// Empty: not there, or empty.
    QString attribute(const char* _name) const;

    /// When next() has been false: "0.xml is not XML that ETS writes: line 3, ...".
    base::result_t result() const;

 private:
    bool fail(const QString& _why);
    bool is_allowed();

    const QString file;
    const progress_t progress;
    metered_device_t meter;
    QXmlStreamReader reader;
    QString error;
    int now = 0;
    qint64 told = 0;
};

}  // namespace ets
