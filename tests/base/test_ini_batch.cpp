// The batched INI writer against the one-write-at-a-time path: the same calls on the same
// file must leave the same bytes, on randomised files and call sequences that include the
// awkward cases (duplicate sections, keys in other letter case, comments, lines without
// '=', names that read as comments or headers, values with line breaks).
#include <gtest/gtest.h>

#include <random>

#include "TestSupport.h"
#include "base/CPrivateINI.h"
#include "base/CPrivateINIBatch.h"
#include "base/VexoError.h"

using namespace vexo;

namespace {

class RandomIni {
public:
    explicit RandomIni(unsigned seed) : m_rng(seed) {}

    std::string pick(const std::vector<std::string>& pool) {
        return pool[std::uniform_int_distribution<std::size_t>(0, pool.size() - 1)(m_rng)];
    }
    int below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(m_rng); }

    std::string section() {
        return pick({"Info", "info", " INFO ", "Co-6027:1173.23:G", "co-6027:1173.23:g",
                     "Cs-13755:661.66:G", "Eu-15263:121.78:G", "", "Caf\xC3\xA9", "A]b"});
    }
    std::string key() {
        return pick({"NucName", "nucname", " AtNo", "HL", "En", "Int", "RadID", "", ";note", "[x",
                     "a=b", "FileID"});
    }
    std::string value() {
        switch (below(8)) {
        case 0:
            return "";
        case 1:
            return "\"quoted\"";
        case 2:
            return "]";
        case 3:
            return "two\r\nlines";
        case 4:
            return " padded ";
        default:
            return std::to_string(below(100000)) + "." + std::to_string(below(100));
        }
    }
    // A file with a preamble, duplicates, comments, blank lines and odd lines.
    std::string file() {
        std::string text = below(2) ? "; banner\r\nstray=1\r\n" : "";
        for (int s = below(8); s > 0; --s) {
            text += "[" + section() + "]\r\n";
            for (int k = below(5); k > 0; --k) {
                switch (below(6)) {
                case 0:
                    text += "; comment\r\n";
                    break;
                case 1:
                    text += "\r\n";
                    break;
                case 2:
                    text += "  " + key() + "\r\n"; // no '='
                    break;
                default:
                    text += key() + " = " + value() + "\n";
                }
            }
        }
        return text;
    }

private:
    std::mt19937 m_rng;
};

struct Call {
    int kind; // 0 PutValue, 1 PutLongValue, 2 DeleteKey, 3 DeleteSection
    std::string section, key, value;
    int32_t number = 0;
};

std::vector<Call> RandomCalls(RandomIni& r, int count) {
    std::vector<Call> calls;
    for (int i = 0; i < count; ++i) {
        int roll = r.below(20);
        int kind = roll < 14 ? 0 : roll < 17 ? 1 : roll < 19 ? 2 : 3;
        calls.push_back({kind, r.section(), r.key(), r.value(), r.below(200) - 100});
    }
    return calls;
}

template <typename Writer> void Apply(Writer& w, const std::vector<Call>& calls) {
    for (const Call& c : calls) {
        if (c.kind == 0)
            w.PutValue(c.section, c.key, c.value);
        else if (c.kind == 1)
            w.PutLongValue(c.section, c.key, c.number);
        else if (c.kind == 2)
            w.DeleteKey(c.section, c.key);
        else
            w.DeleteSection(c.section);
    }
}

} // namespace

TEST(IniBatch, SameBytesAsOneWriteAtATime) {
    vexo::test::TempDir dir;
    for (unsigned seed = 1; seed <= 300; ++seed) {
        RandomIni r(seed);
        const bool existing = seed % 5 != 0;
        const std::string start = r.file();
        const std::vector<Call> calls = RandomCalls(r, 1 + r.below(40));
        const auto single = dir / "single.ini", batched = dir / "batched.ini";
        std::filesystem::remove(single);
        std::filesystem::remove(batched);
        if (existing) {
            vexo::test::WriteBytes(single, start);
            vexo::test::WriteBytes(batched, start);
        }
        CPrivateINI ini;
        ini.setINIFile(single.string());
        Apply(ini, calls);
        ini.setINIFile(batched.string());
        CPrivateINIBatch batch(ini);
        Apply(batch, calls);
        ASSERT_TRUE(batch.Commit().ok);
        ASSERT_EQ(std::filesystem::exists(single), std::filesystem::exists(batched)) << seed;
        if (std::filesystem::exists(single))
            ASSERT_EQ(vexo::test::ReadBytes(batched), vexo::test::ReadBytes(single))
                << "seed " << seed;
    }
}

// Whole-file readers read through a batch: same sections, pairs and values as CPrivateINI.
TEST(IniBatch, ReadsAsCPrivateINIReads) {
    vexo::test::TempDir dir;
    for (unsigned seed = 1; seed <= 200; ++seed) {
        RandomIni r(seed);
        const auto path = dir / "read.ini";
        vexo::test::WriteBytes(path, r.file());
        CPrivateINI ini;
        ini.setINIFile(path.string());
        CPrivateINIBatch batch(ini);
        const auto sections = ini.GetSections();
        ASSERT_EQ(batch.GetSections(), sections) << seed;
        std::vector<std::string> names = sections;
        names.push_back(r.section());
        for (const std::string& name : names) {
            ASSERT_EQ(batch.GetPairs(name), ini.GetPairs(name)) << seed << " [" << name << "]";
            const std::string key = r.key();
            ASSERT_EQ(batch.GetValue(name, key, " 'd' "), ini.GetValue(name, key, " 'd' ")) << seed;
            ASSERT_EQ(batch.GetLongValue(name, key, 7), ini.GetLongValue(name, key, 7)) << seed;
        }
    }
}

// A library-shaped batch: many line sections written onto an existing library.
TEST(IniBatch, SameBytesForALargeLibraryUpdate) {
    vexo::test::TempDir dir;
    RandomIni r(7);
    std::string start = "[Info]\r\nFileID=Vexo Nuclide Library\r\n";
    for (int i = 0; i < 50; ++i)
        start += "[Line" + std::to_string(i) + "]\r\nNucName=Old\r\nEn=1\r\n; keep\r\n";
    std::vector<Call> calls;
    for (int i = 0; i < 400; ++i) {
        std::string s = "LINE" + std::to_string(r.below(120));
        for (const char* k : {"NucName", "AtNo", "En", "Int", "RadID"})
            calls.push_back({0, s, k, r.value()});
    }
    calls.push_back({3, "line3", "", ""});
    for (const char* name : {"single.nli", "batched.nli"})
        vexo::test::WriteBytes(dir / name, start);
    CPrivateINI ini;
    ini.setINIFile((dir / "single.nli").string());
    Apply(ini, calls);
    ini.setINIFile((dir / "batched.nli").string());
    CPrivateINIBatch batch(ini);
    Apply(batch, calls);
    ASSERT_TRUE(batch.Commit().ok);
    EXPECT_EQ(vexo::test::ReadBytes(dir / "batched.nli"),
              vexo::test::ReadBytes(dir / "single.nli"));
}

TEST(IniBatch, UnchangedFileIsNotRewrittenAndFailuresAreReported) {
    vexo::test::TempDir dir;
    const auto path = dir / "lf.ini";
    vexo::test::WriteBytes(path, "[A]\nK=1\n"); // LF only: a rewrite would add CR
    CPrivateINI ini;
    ini.setINIFile(path.string());
    CPrivateINIBatch same(ini);
    same.PutValue("a", "k", "1");
    same.DeleteKey("B", "K");
    ASSERT_TRUE(same.Commit().ok);
    EXPECT_EQ(vexo::test::ReadBytes(path), "[A]\nK=1\n");

    CPrivateINI unnamed;
    EXPECT_THROW(CPrivateINIBatch{unnamed}, NumberedError);

    ini.setINIFile((dir / "no" / "such" / "folder.ini").string());
    CPrivateINIBatch lost(ini);
    lost.PutValue("A", "K", "1");
    IniBatchCommit commit = lost.Commit();
    EXPECT_FALSE(commit.ok);
    EXPECT_NE(commit.error.find("folder.ini"), std::string::npos);
}
