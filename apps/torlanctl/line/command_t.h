#pragma once

#include <QList>
#include <QStringList>

#include "line/argument_t.h"
#include "line/call_t.h"
#include "line/option_t.h"
#include "line/outcome_t.h"

namespace torlan {

enum class works_on_t {
    nothing,
    installation,
    changed_installation,  ///< what a server may have to follow
};

/// One command: what people type, what they read about it, what it does. Parsing, help, the manual
/// page and completion are all made of this.
struct command_t {
    const char* name;       ///< one or two words
    const char* arguments;  ///< as arguments_of() reads them
    const char* help;       ///< one line
    outcome_t (*run)(const call_t& _call);
    works_on_t on = works_on_t::installation;
    QList<option_t> options = {};
    QStringList examples = {};  ///< without "torlanctl"
    const char* more = "";      ///< a paragraph; empty: the line says all
    bool is_hidden = false;     ///< for programs, not for people

    QStringList words() const { return QString::fromLatin1(name).split(QLatin1Char(' ')); }
    bool needs_data() const { return on != works_on_t::nothing; }
};

using commands_t = QList<command_t>;

/// What every command takes: the folder, help, version.
const QList<option_t>& common_options();

/// The option of a list with this name; null: none.
const option_t* find_option(const QList<option_t>& _options, const QString& _name);

/// "grant USER ELEMENT|--all|--type N PERMISSION"
QString typed_text(const command_t& _command);

/// The whole line: "torlanctl [--data DIR] bus [OPTIONS]".
QString usage_text(const command_t& _command);

}  // namespace torlan
