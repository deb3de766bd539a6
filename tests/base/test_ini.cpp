// The INI store: reading and writing rules of the private-profile functions, and that a
// write leaves every other byte of the file alone.
#include <gtest/gtest.h>

#include <functional>

#include "TestSupport.h"
#include "base/CPrivateINI.h"
#include "base/IniFile.h"
#include "base/VexoError.h"

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
    // The path is given with blanks around it, which the store trims.
    CPrivateINI& ini() {
        m_ini.setINIFile("  " + path().string() + " ");
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

TEST_F(IniTest, GetValueRules) {
    const struct {
        const char *file, *section, *key, *expected;
    } cases[] = {
        {"[S]\r\nk=v\r\n", "S", "k", "v"},
        {"[Sect]\r\nKeyName=v\r\n", "sECT", "KEYNAME", "v"}, // names ignore letter case
        {"[  Sect \t]\r\n  Key  =v\r\n", " Sect ", " Key\t", "v"},
        {"[S]\r\nk=  \t v w \t \r\n", "S", "k", "v w"},
        {"[S]\r\nk=\" v \"\r\n", "S", "k", " v "},
        {"[S]\r\nk='v'\r\n", "S", "k", "v"},
        {"[S]\r\nk=\"\"v\"\"\r\n", "S", "k", "\"v\""}, // only one pair of quotes goes
        {"[S]\r\nk=\"v\r\n", "S", "k", "\"v"},         // unbalanced, mixed or lone: kept
        {"[S]\r\nk=\"v'\r\n", "S", "k", "\"v'"},
        {"[S]\r\nk=\"\r\n", "S", "k", "\""},
        {"[S]\r\nk=\"\"\r\n", "S", "k", ""},
        {"[S]\r\nk=a=b\r\n", "S", "k", "a=b"},
        {"[S]\r\nk=\r\n", "S", "k", ""},
        {"[S]\r\nk= \r\n", "S", "k", ""},
        {"[S]\r\nk=1\r\nK=2\r\n", "S", "k", "1"},                 // first duplicate key
        {"[S]\r\nk=1\r\n[s]\r\nk=2\r\nj=3\r\n", "S", "j", "<d>"}, // first duplicate section
        {"[S]\r\nk=1\r\n", "S", "x", "<d>"},
        {"[S]\r\nk=1\r\n", "T", "k", "<d>"},
        {"[S]\r\n[T]\r\nk=1\r\n", "S", "k", "<d>"},
        {"[S]\r\nk\r\n", "S", "k", "<d>"},     // a line without "=" is no value
        {"k=1\r\n[S]\r\n", "S", "k", "<d>"},   // before the first section
        {"[S]\r\n;k=1\r\n", "S", ";k", "<d>"}, // a comment is no key
        {"  [S]  \r\nk=1\r\n", "S", "k", "1"},
        {"[S] old\r\nk=1\r\n", "S", "k", "1"},
        {"[S]\r\n[T=1\r\n", "S", "[T", "1"}, // a bracket without its close is an entry
        {"[S]\nk=1\nj=2\n", "S", "j", "2"},
        {"[S]\r\nk=last", "S", "k", "last"},
        {"[S]\r\nk=caf\xE9 \x80\r\n", "S", "k", "caf\xC3\xA9 \xE2\x82\xAC"}, // Windows-1252
        {"[\xC9t\xE9]\r\nk=1\r\n", "\xC3\xA9t\xC3\x89", "k", "1"}};
    for (const auto& c : cases)
        EXPECT_EQ(file(c.file).GetValue(c.section, c.key, "<d>"), c.expected) << c.file;
    // The default loses trailing blanks and quotes as well.
    EXPECT_EQ(file("[S]\r\n").GetValue("S", "k", "abc  "), "abc");
    EXPECT_EQ(ini().GetValue("S", "k", "\"q\""), "q");
}

TEST_F(IniTest, ValueLongerThan999CharactersIsCut) {
    auto& ini = file("[S]\r\nlong=" + Repeat('x', 1500) + "\r\nedge=" + Repeat('z', 999) +
                     "\r\nk=" + Repeat('\xE9', 1200) + "\r\n");
    EXPECT_EQ(ini.GetValue("S", "long", ""), Repeat('x', 999));
    EXPECT_EQ(ini.GetValue("S", "edge", ""), Repeat('z', 999));
    EXPECT_EQ(ini.GetValue("S", "missing", Repeat('d', 1200)), Repeat('d', 999));
    std::string accents; // the cut counts characters, not UTF-8 bytes
    for (int i = 0; i < 999; ++i)
        accents += "\xC3\xA9";
    EXPECT_EQ(ini.GetValue("S", "k", ""), accents);
}

TEST_F(IniTest, GetLongValue) {
    const std::pair<const char*, int32_t> cases[] = {
        {"12", 12},         {"  -7", -7}, {"+3", 3},      {"0", 0},
        {"12abc", 12},      {"12.9", 12}, {"abc", 0},     {"- 5", 0},
        {"0x1F", 31},       {"0x", 0},    {"\"42\"", 42}, {"2147483647", 2147483647},
        {"4294967295", -1}, {"", 77},     {" ", 77}};
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(file(std::string("[S]\r\nk=") + text + "\r\n").GetLongValue("S", "k", 77),
                  expected)
            << '"' << text << '"';
    auto& ini = file("[S]\r\nk\r\n");
    EXPECT_EQ(ini.GetLongValue("S", "x", -1), -1);
    EXPECT_EQ(ini.GetLongValue("T", "k", 5), 5);
    EXPECT_EQ(ini.GetLongValue("S", "k", 6), 6);
}

TEST_F(IniTest, EnumeratesInFileOrder) {
    auto& ini = file("; banner\r\nstray=1\r\n[B]\r\nz=1\r\n; note\r\n\r\ny = 2\r\nbare\r\n"
                     "[A]\r\n[]\r\nq=1\r\n");
    EXPECT_EQ(ini.GetSections(), (Strings{"B", "A"}));
    EXPECT_EQ(ini.GetKeys("b"), (Strings{"z", "y"}));
    EXPECT_EQ(ini.GetEntries("B"), (Strings{"z=1", "y=2", "bare"}));
    EXPECT_EQ(ini.GetKeys("A"), Strings{});
    EXPECT_EQ(ini.GetEntries("missing"), Strings{});
    EXPECT_EQ(ini.GetPairs("missing").size(), 0u);
    // An empty section name stands for no section: the key list is the section list.
    EXPECT_EQ(ini.GetKeys(""), (Strings{"B", "A"}));
    using Pairs = std::vector<std::pair<std::string, std::string>>;
    EXPECT_EQ(file("[S]\r\nK=a=b\r\nbare\r\n").GetPairs("S"), (Pairs{{"K", "a=b"}, {"bare", ""}}));
}

TEST_F(IniTest, EmptyNamesAddressTheEmptySectionAndKey) {
    auto& ini = file("[]\r\n=v\r\n[S]\r\nk=1\r\n");
    EXPECT_EQ(ini.GetValue("", "", "d"), "v");
    EXPECT_EQ(ini.GetSections(), Strings{"S"}); // the nameless section is not listed
    ini.PutValue("", "", "");
    EXPECT_EQ(bytes(), "[]\r\n= \r\n[S]\r\nk=1\r\n");
}

TEST_F(IniTest, EmptyMissingOrFolderFileHasNothingAndWritesCreateIt) {
    EXPECT_EQ(file("\r\n; only a comment\r\n").GetSections(), Strings{});
    std::filesystem::remove(path());
    EXPECT_EQ(ini().GetValue("S", "k", "d"), "d");
    ini().DeleteKey("S", "k");
    ini().DeleteSection("S");
    EXPECT_FALSE(std::filesystem::exists(path()));
    ini().PutValue("S", "k", "v");
    EXPECT_EQ(bytes(), "[S]\r\nk=v\r\n");
    // A folder in place of the file reads empty and is not written.
    m_ini.setINIFile(m_dir.path().string());
    EXPECT_EQ(m_ini.GetValue("S", "k", "d"), "d");
    EXPECT_NO_THROW(m_ini.PutValue("S", "k", "v"));
    EXPECT_TRUE(std::filesystem::is_directory(m_dir.path()));
}

// A key name and its NUL take 10 characters: 99 keys still fit the first buffer of 1000
// (with the list's final NUL), 100 do not; 300 pass 3000, and 1000 sections (14
// characters each) need several growths.
TEST_F(IniTest, ListsGrowPastTheBuffer) {
    for (int count : {1, 99, 100, 101, 300, 1000}) {
        std::string text = "[Big]\r\n";
        Strings sections{"Big"}, keys, entries;
        for (int i = 0; i < count; ++i) {
            keys.push_back("Key" + std::to_string(100000 + i));
            entries.push_back(keys.back() + "=" + std::to_string(i));
            text += entries.back() + "\r\n";
        }
        for (int i = 0; i < count; ++i) {
            sections.push_back("Section" + std::to_string(100000 + i));
            text += "[" + sections.back() + "]\r\n";
        }
        auto& ini = file(text);
        EXPECT_EQ(ini.GetSections(), sections) << count;
        EXPECT_EQ(ini.GetKeys("Big"), keys) << count;
        EXPECT_EQ(ini.GetEntries("Big"), entries) << count;
    }
}

TEST(IniFileBuffer, CutsListsToSizeMinusTwoAndValuesToSizeMinusOne) {
    IniFile lists = IniFile::FromText("[AAAA]\n[BBBB]\n[CCCC]\n");
    const std::string all("AAAA\0BBBB\0CCCC\0", 15);
    EXPECT_EQ(lists.readString(std::nullopt, std::nullopt, "", 16), all); // 15 + final NUL
    EXPECT_EQ(lists.readString(std::nullopt, std::nullopt, "", 15), all.substr(0, 13));
    EXPECT_EQ(lists.readString(std::nullopt, std::nullopt, "", 8), all.substr(0, 6));
    IniFile values = IniFile::FromText("[S]\nk=abcdef\nj=de\n");
    EXPECT_EQ(values.readString("S", "k", "", 7), "abcdef");
    EXPECT_EQ(values.readString("S", "k", "", 6), "abcde");
    EXPECT_EQ(values.readString("S", "k", "", 1), "");
    const std::string section("k=abcdef\0j=de\0", 14);
    EXPECT_EQ(values.readSection("S", 15), section);
    EXPECT_EQ(values.readSection("S", 14), section.substr(0, 12));
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

TEST_F(IniTest, WritesChangeOnlyTheirOwnLines) {
    const struct {
        const char* before;
        std::function<void(CPrivateINI&)> change;
        const char* after;
    } cases[] = {
        {kSample, [](CPrivateINI& i) { i.PutValue("one", "A", "9"); },
         "; Vexo settings\r\n\r\n[One]\r\n  a =9\r\n; about b\r\nb=2\r\njunk line\r\n"
         "\r\n; about Two\r\n[Two]\r\nc=3\r\n"},
        {kSample, [](CPrivateINI& i) { i.PutValue("Two", "c", "3"); }, kSample},
        {kSample, [](CPrivateINI& i) { i.PutValue("One", " new ", "x y"); },
         "; Vexo settings\r\n\r\n[One]\r\n  a = 1  \r\n; about b\r\nb=2\r\njunk line\r\n"
         "new=x y\r\n\r\n; about Two\r\n[Two]\r\nc=3\r\n"},
        {"[E]\r\n; c\r\n[F]\r\n", [](CPrivateINI& i) { i.PutValue("E", "k", "v"); },
         "[E]\r\nk=v\r\n; c\r\n[F]\r\n"},
        {kSample, [](CPrivateINI& i) { i.PutValue(" Three ", "d", "4"); },
         "; Vexo settings\r\n\r\n[One]\r\n  a = 1  \r\n; about b\r\nb=2\r\njunk line\r\n"
         "\r\n; about Two\r\n[Two]\r\nc=3\r\n[Three]\r\nd=4\r\n"},
        {"[S]\r\n", [](CPrivateINI& i) { i.PutValue("S", "k", ""); }, "[S]\r\nk= \r\n"},
        {"", [](CPrivateINI& i) { i.PutLongValue("S", "k", -2147483647 - 1); },
         "[S]\r\nk=-2147483648\r\n"},
        {"[S]\r\nk=1\r\n[S]\r\nk=2\r\n", [](CPrivateINI& i) { i.PutValue("s", "K", "3"); },
         "[S]\r\nk=3\r\n[S]\r\nk=2\r\n"},
        {"[S]\r\nk \r\n", [](CPrivateINI& i) { i.PutValue("S", "k", "1"); }, "[S]\r\nk=1\r\n"},
        {kSample, [](CPrivateINI& i) { i.DeleteKey("ONE", "b"); },
         "; Vexo settings\r\n\r\n[One]\r\n  a = 1  \r\n; about b\r\njunk line\r\n"
         "\r\n; about Two\r\n[Two]\r\nc=3\r\n"},
        {"[S]\r\nk=1\r\nj=0\r\nK=2\r\n", [](CPrivateINI& i) { i.DeleteKey("S", "k"); },
         "[S]\r\nj=0\r\n"},
        {kSample, [](CPrivateINI& i) { i.DeleteKey("One", "z"); }, kSample},
        {kSample, [](CPrivateINI& i) { i.DeleteSection("one"); },
         "; Vexo settings\r\n\r\n; about Two\r\n[Two]\r\nc=3\r\n"},
        {"[A]\r\na=1\r\n\r\n\r\n[B]\r\nb=2\r\n", [](CPrivateINI& i) { i.DeleteSection("A"); },
         "[B]\r\nb=2\r\n"},
        {"[A]\r\n[B]\r\nb=1\r\n[a]\r\nx=1\r\n", [](CPrivateINI& i) { i.DeleteSection("A"); },
         "[B]\r\nb=1\r\n"},
        {kSample,
         [](CPrivateINI& i) {
             i.PutEntries("One", {"x=1", "y = 2"});
         },
         "; Vexo settings\r\n\r\n[One]\r\nx=1\r\ny = 2\r\n\r\n; about Two\r\n[Two]\r\nc=3\r\n"},
        {"[A]\r\n", [](CPrivateINI& i) { i.PutEntries("B", {"x=1"}); }, "[A]\r\n[B]\r\nx=1\r\n"},
        {"[A]\r\na=1\r\n[B]\r\n", [](CPrivateINI& i) { i.PutEntries("A", {}); }, "[A]\r\n[B]\r\n"},
        {"",
         [](CPrivateINI& i) {
             i.PutEntries("A", {"a=1", "", "b=2"});
         },
         "[A]\r\na=1\r\n"},
        {"[P]\r\nold=1\r\n",
         [](CPrivateINI& i) {
             i.PutPairs("P", {{"K", "a=b"}, {"n", ""}});
         },
         "[P]\r\nK=a=b\r\nn=\r\n"},
        {"[S]\nk=1\n; c\n", [](CPrivateINI& i) { i.PutValue("S", "k", "2"); },
         "[S]\r\nk=2\r\n; c\r\n"},
        {"[S]\r\nk=1", [](CPrivateINI& i) { i.PutValue("S", "j", "2"); }, "[S]\r\nk=1\r\nj=2\r\n"},
        {"; caf\xE9\r\n[S]\r\n", [](CPrivateINI& i) { i.PutValue("S", "k", "\xE2\x82\xAC 5"); },
         "; caf\xE9\r\n[S]\r\nk=\x80 5\r\n"}};
    for (const auto& c : cases) {
        c.change(file(c.before));
        EXPECT_EQ(bytes(), c.after) << c.before;
    }
}

TEST_F(IniTest, WrittenValuesReadBack) {
    auto& ini = file("[A]\r\na=1\r\nb=2\r\n[B]\r\nc=3\r\n");
    ini.DeleteSection("A");
    EXPECT_EQ(ini.GetSections(), Strings{"B"});
    EXPECT_EQ(ini.GetValue("A", "a", "gone"), "gone");
    ini.PutValue("PROGRAM", "DetectorPath", "");
    EXPECT_EQ(ini.GetValue("PROGRAM", "DetectorPath", "x"), "");
    Strings entries{"Name=Cs-137", "Energy=661.657", "Note=a=b"};
    ini.PutEntries("Nuclide1", entries);
    EXPECT_EQ(ini.GetEntries("Nuclide1"), entries);
}

TEST(IniNoFileName, EveryMemberRaisesError52) {
    const std::function<void(CPrivateINI&)> members[] = {
        [](CPrivateINI& i) { i.DeleteKey("S", "k"); },
        [](CPrivateINI& i) { i.DeleteSection("S"); },
        [](CPrivateINI& i) { i.GetEntries("S"); },
        [](CPrivateINI& i) { i.GetKeys("S"); },
        [](CPrivateINI& i) { i.GetLongValue("S", "k", 0); },
        [](CPrivateINI& i) { i.GetPairs("S"); },
        [](CPrivateINI& i) { i.GetSections(); },
        [](CPrivateINI& i) { i.GetValue("S", "k", ""); },
        [](CPrivateINI& i) { i.PutEntries("S", {"a=1"}); },
        [](CPrivateINI& i) { i.PutLongValue("S", "k", 1); },
        [](CPrivateINI& i) {
            i.PutPairs("S", {{"a", "1"}});
        },
        [](CPrivateINI& i) { i.PutValue("S", "k", "v"); }};
    for (std::size_t n = 0; n < std::size(members); ++n) {
        CPrivateINI store;
        store.setINIFile("  ");
        EXPECT_EQ(store.INIFile(), ""); // the path is trimmed of blanks
        try {
            members[n](store);
            ADD_FAILURE() << "member " << n << " did not raise";
        } catch (const NumberedError& e) {
            EXPECT_EQ(e.number(), 52) << n;
            EXPECT_STREQ(e.what(), "Bad file name or number") << n;
        }
    }
}
