#pragma once
// The preferences dialog's rules that are not mere copying of a control into a field.
#include <string>
#include <string_view>

namespace vexo {

// OK's rule for the default nuclide library: the candidate is the trimmed box text, or
// "none" when that is empty; it replaces `current` only when a file of that name exists.
// So emptying the box or typing a path that does not exist keeps the previous library.
std::string DefaultLibraryAfterOk(std::string_view boxText, const std::string& current);

// The "Default plot type:" list position (0 dots, 1 lines, 2 histograms) as the stored
// graph type 1..3, and back; positions and types out of range are clamped.
int GraphTypeFromListIndex(int index);
int ListIndexFromGraphType(int graphType);

} // namespace vexo
