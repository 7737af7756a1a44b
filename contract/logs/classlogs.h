#pragma once

#include <QString>

namespace utility::logs {

/// The server's logger as drivers see it.
///
/// The host program installs one implementation with setInstance() before it loads drivers and
/// takes it out again (null) before it destroys it. Without one, getInstance() is null and
/// callers skip their line.
class classlogs {
 public:
    virtual ~classlogs();

    /// The installed logger or null. Any thread.
    static classlogs* getInstance();

    /// Installs @p _logger (null takes it out). Not owned. Any thread.
    static void setInstance(classlogs* _logger);

    /// Takes one line; never blocks on a sink. Any thread.
    /// @param _message text of the line
    /// @param _level 0 configuration errors that stop initialisation, 1 caught exceptions,
    ///        2 errors, 3 warnings and skipped operations, 4 life-cycle, 6 detail
    /// @param _function bare name of the calling function
    /// @param _source source path from "server/" on, without extension
    /// @param _line source line, greater than 0
    virtual void log_asynch(const QString& _message, int _level, const QString& _function,
                            const QString& _source, int _line) = 0;
};

}  // namespace utility::logs
