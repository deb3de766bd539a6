#pragma once
// File-dialog filters are kept in the "name|pattern|name|pattern" form the program has
// always used; the desktop's dialogs want "name (pattern);;name (pattern)".
#include <string>
#include <string_view>

namespace vexo {

// "Text files (*.txt)|*.txt|All files (*.*)|*.*" -> "Text files (*.txt);;All files (*)".
// Each entry's name is kept as written; when the name does not already show its
// pattern, the pattern is appended in brackets so the dialog can filter on it. "*.*"
// becomes "*" so that files without an extension are listed too. A trailing "|" and
// empty entries are ignored; an odd entry without a pattern is taken as a name for "*".
std::string DialogFilterFromPipes(std::string_view pipes);

} // namespace vexo
