// The INI store: reading and writing rules of the private-profile functions, and that a
// write leaves every other byte of the file alone.
#include <gtest/gtest.h>

#include "TestSupport.h"
#include "base/CPrivateINI.h"
#include "base/IniFile.h"
#include "base/VexoError.h"

#include <functional>

using namespace vexo;
using vexo::test::ReadBytes;
using vexo::test::TempDir;
using vexo::test::WriteBytes;

namespace {

using Strings = std::vector<std::string>;

class IniTest : public ::testing::Test {
protected:
    // Writes `bytes` as the file and points the store at it.
    CPrivateINI& file(const std::string& bytes) {
        WriteBytes(path(), bytes);
        return ini();
    }
    CPrivateINI& ini() {
        m_ini.setINIFile(path().string());
        return m_ini;
    }
    std::filesystem::path path() const { return m_dir / "test.ini"; }
    std::string bytes() const { return ReadBytes(path()); }

    TempDir m_dir;
    CPrivateINI m_ini;
};

std::string Repeat(char c, std::size_t n) {
    return std::string(n, c);
}

} // namespace

// --- reading -------------------------------------------------------------------------

struct ReadCase {
    const char* name;
    const char* file;
    const char* section;
    const char* key;
    const char* expected;
};

class IniReadTest : public IniTest, public ::testing::WithParamInterface<ReadCase> {};

TEST_P(IniReadTest, GetValue) {
    const auto& c = GetParam();
    EXPECT_EQ(file(c.file).GetValue(c.section, c.key, "<default>"), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, IniReadTest,
    ::testing::Values(
        ReadCase{"plain", "[S]\r\nk=v\r\n", "S", "k", "v"},
        ReadCase{"case_of_names", "[Sect]\r\nKeyName=v\r\n", "sECT", "KEYNAME", "v"},
        ReadCase{"blanks_round_names", "[  Sect \t]\r\n  Key  =v\r\n", " Sect ", " Key\t", "v"},
        ReadCase{"blanks_round_value", "[S]\r\nk=  \t v w \t \r\n", "S", "k", "v w"},
        ReadCase{"double_quotes", "[S]\r\nk=\" v \"\r\n", "S", "k", " v "},
        ReadCase{"single_quotes", "[S]\r\nk='v'\r\n", "S", "k", "v"},
        ReadCase{"only_one_pair_of_quotes", "[S]\r\nk=\"\"v\"\"\r\n", "S", "k", "\"v\""},
        ReadCase{"unbalanced_quote_kept", "[S]\r\nk=\"v\r\n", "S", "k", "\"v"},
        ReadCase{"mixed_quotes_kept", "[S]\r\nk=\"v'\r\n", "S", "k", "\"v'"},
        ReadCase{"lone_quote_kept", "[S]\r\nk=\"\r\n", "S", "k", "\""},
        ReadCase{"empty_quotes", "[S]\r\nk=\"\"\r\n", "S", "k", ""},
        ReadCase{"value_holds_equals", "[S]\r\nk=a=b\r\n", "S", "k", "a=b"},
        ReadCase{"empty_value", "[S]\r\nk=\r\n", "S", "k", ""},
        ReadCase{"blank_value", "[S]\r\nk= \r\n", "S", "k", ""},
        ReadCase{"first_duplicate_key", "[S]\r\nk=1\r\nK=2\r\n", "S", "k", "1"},
        ReadCase{"first_duplicate_section", "[S]\r\nk=1\r\n[s]\r\nk=2\r\nj=3\r\n", "S", "j",
                 "<default>"},
        ReadCase{"missing_key", "[S]\r\nk=1\r\n", "S", "x", "<default>"},
        ReadCase{"missing_section", "[S]\r\nk=1\r\n", "T", "k", "<default>"},
        ReadCase{"key_of_other_section", "[S]\r\n[T]\r\nk=1\r\n", "S", "k", "<default>"},
        ReadCase{"line_without_equals", "[S]\r\nk\r\n", "S", "k", "<default>"},
        ReadCase{"before_first_section", "k=1\r\n[S]\r\n", "S", "k", "<default>"},
        ReadCase{"comment_is_no_key", "[S]\r\n;k=1\r\n", "S", ";k", "<default>"},
        ReadCase{"indented_header", "  [S]  \r\nk=1\r\n", "S", "k", "1"},
        ReadCase{"header_with_trailing_text", "[S] old\r\nk=1\r\n", "S", "k", "1"},
        ReadCase{"bracket_without_close_is_entry", "[S]\r\n[T=1\r\n", "S", "[T", "1"},
        ReadCase{"lf_only", "[S]\nk=1\nj=2\n", "S", "j", "2"},
        ReadCase{"no_final_line_end", "[S]\r\nk=last", "S", "k", "last"},
        ReadCase{"windows_1252_bytes", "[S]\r\nk=caf\xE9 \x80\r\n", "S", "k",
                 "caf\xC3\xA9 \xE2\x82\xAC"},
        ReadCase{"windows_1252_case", "[\xC9t\xE9]\r\nk=1\r\n", "\xC3\xA9t\xC3\x89", "k", "1"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(IniTest, DefaultLosesTrailingBlanksAndQuotes) {
    auto& ini = file("[S]\r\n");
    EXPECT_EQ(ini.GetValue("S", "k", "abc  "), "abc");
    EXPECT_EQ(ini.GetValue("S", "k", "\"q\""), "q");
    EXPECT_EQ(ini.GetValue("S", "k", ""), "");
}

TEST_F(IniTest, ValueLongerThan999CharactersIsCut) {
    auto& ini = file("[S]\r\nlong=" + Repeat('x', 1500) + "\r\nfits=" + Repeat('y', 998) +
                     "\r\nedge=" + Repeat('z', 999) + "\r\n");
    EXPECT_EQ(ini.GetValue("S", "long", ""), Repeat('x', 999));
    EXPECT_EQ(ini.GetValue("S", "fits", ""), Repeat('y', 998));
    EXPECT_EQ(ini.GetValue("S", "edge", ""), Repeat('z', 999));
    EXPECT_EQ(ini.GetValue("S", "missing", Repeat('d', 1200)), Repeat('d', 999));
}

TEST_F(IniTest, CutCountsCharactersNotUtf8Bytes) {
    auto& ini = file("[S]\r\nk=" + Repeat('\xE9', 1200) + "\r\n");
    std::string expected;
    for (int i = 0; i < 999; ++i)
        expected += "\xC3\xA9";
    EXPECT_EQ(ini.GetValue("S", "k", ""), expected);
}

struct IntCase {
    const char* value;
    int32_t expected;
};

class IniLongTest : public IniTest, public ::testing::WithParamInterface<IntCase> {};

TEST_P(IniLongTest, GetLongValue) {
    const auto& c = GetParam();
    EXPECT_EQ(file(std::string("[S]\r\nk=") + c.value + "\r\n").GetLongValue("S", "k", 77),
              c.expected)
        << '"' << c.value << '"';
}

INSTANTIATE_TEST_SUITE_P(Texts, IniLongTest,
                         ::testing::Values(IntCase{"12", 12}, IntCase{"  -7", -7}, IntCase{"+3", 3},
                                           IntCase{"-1", -1}, IntCase{"0", 0}, IntCase{"12abc", 12},
                                           IntCase{"12.9", 12}, IntCase{"abc", 0},
                                           IntCase{"- 5", 0}, IntCase{"0x1F", 31}, IntCase{"0x", 0},
                                           IntCase{"\"42\"", 42}, IntCase{"2147483647", 2147483647},
                                           IntCase{"4294967295", -1}, IntCase{"16777215", 16777215},
                                           IntCase{"", 77}, IntCase{" ", 77}));

TEST_F(IniTest, GetLongValueDefaultWhenAbsent) {
    auto& ini = file("[S]\r\nk\r\n");
    EXPECT_EQ(ini.GetLongValue("S", "x", -1), -1);
    EXPECT_EQ(ini.GetLongValue("T", "k", 5), 5);
    EXPECT_EQ(ini.GetLongValue("S", "k", 6), 6);
}

// --- enumeration ---------------------------------------------------------------------

TEST_F(IniTest, EnumeratesInFileOrder) {
    auto& ini = file("; banner\r\nstray=1\r\n[B]\r\nz=1\r\n; note\r\n\r\ny = 2\r\nbare\r\n"
                     "[A]\r\n[]\r\nq=1\r\n");
    EXPECT_EQ(ini.GetSections(), (Strings{"B", "A"}));
    EXPECT_EQ(ini.GetKeys("b"), (Strings{"z", "y"}));
    EXPECT_EQ(ini.GetEntries("B"), (Strings{"z=1", "y=2", "bare"}));
    EXPECT_EQ(ini.GetKeys("A"), Strings{});
    EXPECT_EQ(ini.GetEntries("A"), Strings{});
    EXPECT_EQ(ini.GetEntries("missing"), Strings{});
    EXPECT_EQ(ini.GetPairs("missing").size(), 0u);
    // An empty section name stands for no section: the key list is the section list.
    EXPECT_EQ(ini.GetKeys(""), (Strings{"B", "A"}));
}

TEST_F(IniTest, EmptyNamesAddressTheEmptySectionAndKey) {
    auto& ini = file("[]\r\n=v\r\n[S]\r\nk=1\r\n");
    EXPECT_EQ(ini.GetValue("", "", "d"), "v");
    EXPECT_EQ(ini.GetSections(), Strings{"S"}); // the nameless section is not listed
    ini.PutValue("", "", "");
    EXPECT_EQ(bytes(), "[]\r\n= \r\n[S]\r\nk=1\r\n");
}

TEST_F(IniTest, EmptyOrMissingFileHasNothing) {
    EXPECT_EQ(file("").GetSections(), Strings{});
    EXPECT_EQ(file("\r\n; only a comment\r\n").GetSections(), Strings{});
    std::filesystem::remove(path());
    EXPECT_EQ(ini().GetSections(), Strings{});
    EXPECT_EQ(ini().GetValue("S", "k", "d"), "d");
    EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(IniTest, PairsKeepEqualsInValue) {
    auto& ini = file("[S]\r\nK=a=b\r\nplain=1\r\nbare\r\n");
    using Pairs = std::vector<std::pair<std::string, std::string>>;
    EXPECT_EQ(ini.GetPairs("S"), (Pairs{{"K", "a=b"}, {"plain", "1"}, {"bare", ""}}));
}

// Lists longer than the first buffer (1000) and than the first growth (3000) come whole.
class IniLongListTest : public IniTest, public ::testing::WithParamInterface<int> {};

TEST_P(IniLongListTest, ListsGrowPastTheBuffer) {
    const int count = GetParam();
    std::string text = "[Big]\r\n";
    Strings sections{"Big"}, keys, entries;
    for (int i = 0; i < count; ++i) {
        std::string key = "Key" + std::to_string(100000 + i);
        keys.push_back(key);
        entries.push_back(key + "=" + std::to_string(i));
        text += key + "=" + std::to_string(i) + "\r\n";
    }
    for (int i = 0; i < count; ++i) {
        sections.push_back("Section" + std::to_string(100000 + i));
        text += "[" + sections.back() + "]\r\n";
    }
    auto& ini = file(text);
    EXPECT_EQ(ini.GetSections(), sections);
    EXPECT_EQ(ini.GetKeys("Big"), keys);
    EXPECT_EQ(ini.GetEntries("Big"), entries);
}

// A key name and its NUL take 10 characters: 99 keys still fit the first buffer of 1000
// (with the list's final NUL), 100 do not; 300 pass 3000, and 1000 sections (14 characters
// each) need several growths.
INSTANTIATE_TEST_SUITE_P(Sizes, IniLongListTest, ::testing::Values(1, 99, 100, 101, 300, 1000));

TEST(IniFileBuffer, ListThatDoesNotFitReturnsSizeMinusTwo) {
    IniFile ini = IniFile::FromText("[AAAA]\n[BBBB]\n[CCCC]\n");
    const std::string all("AAAA\0BBBB\0CCCC\0", 15);
    EXPECT_EQ(ini.readString(std::nullopt, std::nullopt, "", 16), all); // 15 + final NUL
    EXPECT_EQ(ini.readString(std::nullopt, std::nullopt, "", 15), all.substr(0, 13));
    EXPECT_EQ(ini.readString(std::nullopt, std::nullopt, "", 8), all.substr(0, 6));
}

TEST(IniFileBuffer, ValueThatDoesNotFitIsCutToSizeMinusOne) {
    IniFile ini = IniFile::FromText("[S]\nk=abcdef\n");
    EXPECT_EQ(ini.readString("S", "k", "", 7), "abcdef");
    EXPECT_EQ(ini.readString("S", "k", "", 6), "abcde");
    EXPECT_EQ(ini.readString("S", "k", "", 1), "");
}

TEST(IniFileBuffer, SectionReadCutsLikeLists) {
    IniFile ini = IniFile::FromText("[S]\nk=abc\nj=de\n");
    const std::string all("k=abc\0j=de\0", 11);
    EXPECT_EQ(ini.readSection("S", 12), all);
    EXPECT_EQ(ini.readSection("S", 11), all.substr(0, 9));
}

// --- writing -------------------------------------------------------------------------

struct WriteCase {
    const char* name;
    const char* before;
    std::function<void(CPrivateINI&)> change;
    const char* after;
};

class IniWriteTest : public IniTest, public ::testing::WithParamInterface<WriteCase> {};

TEST_P(IniWriteTest, ChangesOnlyItsOwnLines) {
    const auto& c = GetParam();
    c.change(file(c.before));
    EXPECT_EQ(bytes(), c.after);
}

const char* const kSample = "; Vexo settings\r\n"
                            "\r\n"
                            "[One]\r\n"
                            "  a = 1  \r\n"
                            "; about b\r\n"
                            "b=2\r\n"
                            "junk line\r\n"
                            "\r\n"
                            "; about Two\r\n"
                            "[Two]\r\n"
                            "c=3\r\n";

INSTANTIATE_TEST_SUITE_P(
    Placement, IniWriteTest,
    ::testing::Values(
        WriteCase{"replace_value_keeps_text_before_equals", kSample,
                  [](CPrivateINI& i) { i.PutValue("one", "A", "9"); },
                  "; Vexo settings\r\n\r\n[One]\r\n  a =9\r\n; about b\r\nb=2\r\njunk line\r\n"
                  "\r\n; about Two\r\n[Two]\r\nc=3\r\n"},
        WriteCase{"same_value_leaves_file_alone", kSample,
                  [](CPrivateINI& i) { i.PutValue("Two", "c", "3"); }, kSample},
        WriteCase{"new_key_after_last_entry_line", kSample,
                  [](CPrivateINI& i) { i.PutValue("One", " new ", "x y"); },
                  "; Vexo settings\r\n\r\n[One]\r\n  a = 1  \r\n; about b\r\nb=2\r\njunk line\r\n"
                  "new=x y\r\n\r\n; about Two\r\n[Two]\r\nc=3\r\n"},
        WriteCase{"new_key_in_empty_section", "[E]\r\n; c\r\n[F]\r\n",
                  [](CPrivateINI& i) { i.PutValue("E", "k", "v"); },
                  "[E]\r\nk=v\r\n; c\r\n[F]\r\n"},
        WriteCase{"new_section_at_end", kSample,
                  [](CPrivateINI& i) { i.PutValue(" Three ", "d", "4"); },
                  "; Vexo settings\r\n\r\n[One]\r\n  a = 1  \r\n; about b\r\nb=2\r\njunk line\r\n"
                  "\r\n; about Two\r\n[Two]\r\nc=3\r\n[Three]\r\nd=4\r\n"},
        WriteCase{"empty_value_written_as_blank", "[S]\r\n",
                  [](CPrivateINI& i) { i.PutValue("S", "k", ""); }, "[S]\r\nk= \r\n"},
        WriteCase{"long_value", "",
                  [](CPrivateINI& i) { i.PutLongValue("S", "k", -2147483647 - 1); },
                  "[S]\r\nk=-2147483648\r\n"},
        WriteCase{"first_duplicate_changed", "[S]\r\nk=1\r\n[S]\r\nk=2\r\n",
                  [](CPrivateINI& i) { i.PutValue("s", "K", "3"); },
                  "[S]\r\nk=3\r\n[S]\r\nk=2\r\n"},
        WriteCase{"bare_line_gets_value", "[S]\r\nk \r\n",
                  [](CPrivateINI& i) { i.PutValue("S", "k", "1"); }, "[S]\r\nk=1\r\n"},
        WriteCase{"delete_key", kSample, [](CPrivateINI& i) { i.DeleteKey("ONE", "b"); },
                  "; Vexo settings\r\n\r\n[One]\r\n  a = 1  \r\n; about b\r\njunk line\r\n"
                  "\r\n; about Two\r\n[Two]\r\nc=3\r\n"},
        WriteCase{"delete_key_and_its_duplicates", "[S]\r\nk=1\r\nj=0\r\nK=2\r\n",
                  [](CPrivateINI& i) { i.DeleteKey("S", "k"); }, "[S]\r\nj=0\r\n"},
        WriteCase{"delete_missing_key", kSample, [](CPrivateINI& i) { i.DeleteKey("One", "z"); },
                  kSample},
        WriteCase{"delete_section_keeps_comment_of_next", kSample,
                  [](CPrivateINI& i) { i.DeleteSection("one"); },
                  "; Vexo settings\r\n\r\n; about Two\r\n[Two]\r\nc=3\r\n"},
        WriteCase{"delete_section_and_following_blanks", "[A]\r\na=1\r\n\r\n\r\n[B]\r\nb=2\r\n",
                  [](CPrivateINI& i) { i.DeleteSection("A"); }, "[B]\r\nb=2\r\n"},
        WriteCase{"delete_every_duplicate_section", "[A]\r\n[B]\r\nb=1\r\n[a]\r\nx=1\r\n",
                  [](CPrivateINI& i) { i.DeleteSection("A"); }, "[B]\r\nb=1\r\n"},
        WriteCase{"put_entries_replaces_section_lines", kSample,
                  [](CPrivateINI& i) {
                      i.PutEntries("One", {"x=1", "y = 2"});
                  },
                  "; Vexo settings\r\n\r\n[One]\r\nx=1\r\ny = 2\r\n\r\n; about Two\r\n"
                  "[Two]\r\nc=3\r\n"},
        WriteCase{"put_entries_new_section", "[A]\r\n",
                  [](CPrivateINI& i) { i.PutEntries("B", {"x=1"}); }, "[A]\r\n[B]\r\nx=1\r\n"},
        WriteCase{"put_entries_empty_list_empties_section", "[A]\r\na=1\r\n[B]\r\n",
                  [](CPrivateINI& i) { i.PutEntries("A", {}); }, "[A]\r\n[B]\r\n"},
        WriteCase{"put_entries_stops_at_empty_entry", "",
                  [](CPrivateINI& i) {
                      i.PutEntries("A", {"a=1", "", "b=2"});
                  },
                  "[A]\r\na=1\r\n"},
        WriteCase{"put_pairs", "[P]\r\nold=1\r\n",
                  [](CPrivateINI& i) {
                      i.PutPairs("P", {{"K", "a=b"}, {"n", ""}});
                  },
                  "[P]\r\nK=a=b\r\nn=\r\n"},
        WriteCase{"lf_file_written_with_cr_lf", "[S]\nk=1\n; c\n",
                  [](CPrivateINI& i) { i.PutValue("S", "k", "2"); }, "[S]\r\nk=2\r\n; c\r\n"},
        WriteCase{"final_line_end_added", "[S]\r\nk=1",
                  [](CPrivateINI& i) { i.PutValue("S", "j", "2"); }, "[S]\r\nk=1\r\nj=2\r\n"},
        WriteCase{"windows_1252_kept", "; caf\xE9\r\n[S]\r\n",
                  [](CPrivateINI& i) { i.PutValue("S", "k", "\xE2\x82\xAC 5"); },
                  "; caf\xE9\r\n[S]\r\nk=\x80 5\r\n"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(IniTest, EmptyTextReadsBackEmpty) {
    auto& ini = file("");
    ini.PutValue("PROGRAM", "DetectorPath", "");
    EXPECT_EQ(ini.GetValue("PROGRAM", "DetectorPath", "x"), "");
}

TEST_F(IniTest, MissingFileIsCreatedOnWrite) {
    ini().PutValue("S", "k", "v");
    EXPECT_EQ(bytes(), "[S]\r\nk=v\r\n");
}

TEST_F(IniTest, DeleteOnMissingFileCreatesNothing) {
    ini().DeleteKey("S", "k");
    ini().DeleteSection("S");
    EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(IniTest, DeleteSectionRemovesItFromTheList) {
    auto& ini = file("[A]\r\na=1\r\nb=2\r\n[B]\r\nc=3\r\n");
    ini.DeleteSection("A");
    EXPECT_EQ(ini.GetSections(), Strings{"B"});
    EXPECT_EQ(ini.GetValue("A", "a", "gone"), "gone");
    EXPECT_EQ(ini.GetKeys("A"), Strings{});
}

TEST_F(IniTest, EntriesRoundTrip) {
    auto& ini = file("");
    Strings entries{"Name=Cs-137", "Energy=661.657", "Note=a=b"};
    ini.PutEntries("Nuclide1", entries);
    EXPECT_EQ(ini.GetEntries("Nuclide1"), entries);
    ini.PutEntries("Nuclide1", {"Name=Co-60"});
    EXPECT_EQ(ini.GetEntries("Nuclide1"), Strings{"Name=Co-60"});
}

TEST_F(IniTest, PathIsTrimmedOfBlanks) {
    CPrivateINI store;
    EXPECT_EQ(store.INIFile(), "");
    store.setINIFile("  " + path().string() + "  ");
    EXPECT_EQ(store.INIFile(), path().string());
    store.setINIFile("   ");
    EXPECT_EQ(store.INIFile(), "");
}

TEST_F(IniTest, DirectoryInsteadOfFileReadsEmptyAndIsNotWritten) {
    m_ini.setINIFile(m_dir.path().string());
    EXPECT_EQ(m_ini.GetSections(), Strings{});
    EXPECT_EQ(m_ini.GetValue("S", "k", "d"), "d");
    EXPECT_NO_THROW(m_ini.PutValue("S", "k", "v"));
    EXPECT_TRUE(std::filesystem::is_directory(m_dir.path()));
}

TEST(IniNoFileName, EveryMemberRaisesError52) {
    const std::vector<std::pair<const char*, std::function<void(CPrivateINI&)>>> members = {
        {"DeleteKey", [](CPrivateINI& i) { i.DeleteKey("S", "k"); }},
        {"DeleteSection", [](CPrivateINI& i) { i.DeleteSection("S"); }},
        {"GetEntries", [](CPrivateINI& i) { i.GetEntries("S"); }},
        {"GetKeys", [](CPrivateINI& i) { i.GetKeys("S"); }},
        {"GetLongValue", [](CPrivateINI& i) { i.GetLongValue("S", "k", 0); }},
        {"GetPairs", [](CPrivateINI& i) { i.GetPairs("S"); }},
        {"GetSections", [](CPrivateINI& i) { i.GetSections(); }},
        {"GetValue", [](CPrivateINI& i) { i.GetValue("S", "k", ""); }},
        {"PutEntries", [](CPrivateINI& i) { i.PutEntries("S", {"a=1"}); }},
        {"PutLongValue", [](CPrivateINI& i) { i.PutLongValue("S", "k", 1); }},
        {"PutPairs",
         [](CPrivateINI& i) {
             i.PutPairs("S", {{"a", "1"}});
         }},
        {"PutValue", [](CPrivateINI& i) { i.PutValue("S", "k", "v"); }},
    };
    for (const auto& [name, call] : members) {
        CPrivateINI store;
        store.setINIFile("  ");
        try {
            call(store);
            ADD_FAILURE() << name << " did not raise";
        } catch (const NumberedError& e) {
            EXPECT_EQ(e.number(), 52) << name;
            EXPECT_STREQ(e.what(), "Bad file name or number") << name;
        }
    }
}
