#pragma once

namespace torlan {

/// Has Qt take and give texts as UTF-8 without a word. Before the application object, one thread.
///
/// In a locale that is not UTF-8, such as a container's bare one, Qt writes a warning of four lines
/// to standard error and takes UTF-8 anyway.
void use_utf8();

}  // namespace torlan
