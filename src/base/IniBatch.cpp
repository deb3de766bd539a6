#include "base/IniBatch.h"

#include "base/TextFile.h"

#include <algorithm>

namespace vexo {
namespace {

bool BreaksLine(std::string_view text) {
    return text.find_first_of("\r\n") != std::string_view::npos;
}

bool IsEntry(std::string_view line) {
    return ClassifyIniLine(line).kind == IniLineKind::Entry;
}

// The engine's blank trimming of a name, as the text it writes into a new line.
std::string TrimmedName(std::string_view name) {
    std::size_t first = name.find_first_not_of(" \t\r\n\v\f");
    if (first == std::string_view::npos)
        return {};
    std::size_t last = name.find_last_not_of(" \t\r\n\v\f");
    return std::string(name.substr(first, last - first + 1));
}

} // namespace

IniBatch::IniBatch(const IniFile& file) {
    load(file.lines());
}

void IniBatch::load(const std::vector<std::string>& lines) {
    m_preamble.clear();
    m_sections.clear();
    for (const std::string& line : lines) {
        if (ClassifyIniLine(line).kind == IniLineKind::Section)
            m_sections.emplace_back();
        (m_sections.empty() ? m_preamble : m_sections.back().lines).push_back(line);
    }
    for (Section& s : m_sections)
        rescan(s);
    indexSections();
}

void IniBatch::rescan(Section& s) {
    s.lastEntry = 0;
    for (std::size_t i = 1; i < s.lines.size(); ++i)
        if (IsEntry(s.lines[i]))
            s.lastEntry = i;
    s.keys.clear();
    s.keysBuilt = false;
}

void IniBatch::indexSections() {
    m_firstSection.clear();
    for (std::size_t i = 0; i < m_sections.size(); ++i)
        m_firstSection.emplace(IniNameKey(ClassifyIniLine(m_sections[i].lines[0]).name), i);
}

IniBatch::Section* IniBatch::findSection(std::string_view name) {
    auto it = m_firstSection.find(IniNameKey(name));
    return it == m_firstSection.end() ? nullptr : &m_sections[it->second];
}

std::optional<std::size_t> IniBatch::findKey(Section& s, std::string_view key) {
    if (!s.keysBuilt) {
        for (std::size_t i = 1; i <= s.lastEntry; ++i) {
            IniLineView v = ClassifyIniLine(s.lines[i]);
            if (v.kind == IniLineKind::Entry)
                s.keys.emplace(IniNameKey(v.name), i);
        }
        s.keysBuilt = true;
    }
    auto it = s.keys.find(IniNameKey(key));
    return it == s.keys.end() ? std::nullopt : std::optional<std::size_t>(it->second);
}

bool IniBatch::writeString(std::string_view section, std::optional<std::string_view> key,
                           std::optional<std::string_view> value) {
    bool changed = false;
    if (BreaksLine(section) || (key && BreaksLine(*key)) || (value && BreaksLine(*value)))
        changed = engineWrite(section, key, value);
    else if (!key)
        changed = removeSections(section);
    else if (!value)
        changed = removeKey(section, *key);
    else if (auto done = setValue(section, *key, *value))
        changed = *done;
    else
        changed = engineWrite(section, key, value);
    m_changed = m_changed || changed;
    return changed;
}

std::optional<bool> IniBatch::setValue(std::string_view section, std::string_view key,
                                       std::string_view value) {
    std::string newLine = TrimmedName(key) + "=" + std::string(value);
    IniLineView newView = ClassifyIniLine(newLine);
    Section* s = findSection(section);
    if (!s) {
        if (newView.kind == IniLineKind::Section)
            return std::nullopt;
        Section added;
        added.lines = {"[" + TrimmedName(section) + "]", std::move(newLine)};
        rescan(added);
        m_firstSection.emplace(IniNameKey(section), m_sections.size());
        m_sections.push_back(std::move(added));
        return true;
    }
    auto at = findKey(*s, key);
    if (!at) {
        if (newView.kind == IniLineKind::Section)
            return std::nullopt;
        std::size_t pos = s->lastEntry + 1;
        bool entry = newView.kind == IniLineKind::Entry;
        std::string name = entry ? IniNameKey(newView.name) : std::string();
        s->lines.insert(s->lines.begin() + static_cast<std::ptrdiff_t>(pos), std::move(newLine));
        if (entry) {
            s->lastEntry = pos;
            s->keys.emplace(std::move(name), pos); // every other entry stands before it
        }
        return true;
    }
    // The line keeps its own spelling of the key and everything up to its '='.
    std::string& line = s->lines[*at];
    std::size_t eq = line.find('=');
    std::string updated = eq == std::string::npos ? TrimmedName(line) + "=" + std::string(value)
                                                  : line.substr(0, eq + 1) + std::string(value);
    if (updated == line)
        return false;
    if (!IsEntry(updated))
        return std::nullopt;
    line = std::move(updated);
    return true;
}

bool IniBatch::removeKey(std::string_view section, std::string_view key) {
    Section* s = findSection(section);
    if (!s)
        return false;
    const std::string name = IniNameKey(key);
    auto first = s->lines.begin() + 1;
    auto last = s->lines.begin() + static_cast<std::ptrdiff_t>(s->lastEntry + 1);
    auto kept = std::remove_if(first, last, [&](const std::string& line) {
        IniLineView v = ClassifyIniLine(line);
        return v.kind == IniLineKind::Entry && IniNameKey(v.name) == name;
    });
    if (kept == last)
        return false;
    s->lines.erase(kept, last);
    rescan(*s);
    return true;
}

bool IniBatch::removeSections(std::string_view section) {
    const std::string name = IniNameKey(section);
    bool changed = false;
    std::vector<Section> kept;
    for (Section& s : m_sections) {
        if (IniNameKey(ClassifyIniLine(s.lines[0]).name) != name) {
            kept.push_back(std::move(s));
            continue;
        }
        // The section goes up to its last entry with the blank lines after it; what
        // follows (comments introducing the next section) joins the text before it.
        std::size_t tail = s.lastEntry + 1;
        while (tail < s.lines.size() && ClassifyIniLine(s.lines[tail]).kind == IniLineKind::Blank)
            ++tail;
        auto& before = kept.empty() ? m_preamble : kept.back().lines;
        before.insert(before.end(), s.lines.begin() + static_cast<std::ptrdiff_t>(tail),
                      s.lines.end());
        changed = true;
    }
    m_sections = std::move(kept);
    if (changed)
        indexSections();
    return changed;
}

bool IniBatch::engineWrite(std::string_view section, std::optional<std::string_view> key,
                           std::optional<std::string_view> value) {
    IniFile flat = file();
    if (!flat.writeString(section, key, value))
        return false;
    // The file is written and read back between two writes, so a line broken by CR or LF
    // comes back as several lines; the batch continues from what would be read.
    std::string text;
    for (const auto& line : flat.lines())
        text.append(line).append("\r\n");
    load(SplitLines(text));
    return true;
}

std::vector<std::string> IniBatch::sectionNames() const {
    std::vector<std::string> names;
    for (const Section& s : m_sections) {
        std::string_view name = ClassifyIniLine(s.lines[0]).name;
        if (!name.empty())
            names.emplace_back(name);
    }
    return names;
}

std::vector<std::string> IniBatch::sectionEntries(std::string_view section) {
    std::vector<std::string> entries;
    if (const Section* s = findSection(section))
        for (std::size_t i = 1; i <= s->lastEntry; ++i) {
            IniLineView v = ClassifyIniLine(s->lines[i]);
            if (v.kind != IniLineKind::Entry)
                continue;
            std::string entry(v.name);
            if (v.value)
                entry.append("=").append(*v.value);
            entries.push_back(std::move(entry));
        }
    return entries;
}

std::optional<std::string> IniBatch::keyValue(std::string_view section, std::string_view key) {
    Section* s = findSection(section);
    if (!s)
        return std::nullopt;
    auto at = findKey(*s, key);
    if (!at)
        return std::nullopt;
    auto value = ClassifyIniLine(s->lines[*at]).value;
    return value ? std::optional<std::string>(*value) : std::nullopt;
}

IniFile IniBatch::file() const {
    std::vector<std::string> lines = m_preamble;
    for (const Section& s : m_sections)
        lines.insert(lines.end(), s.lines.begin(), s.lines.end());
    return IniFile(std::move(lines));
}

} // namespace vexo
