// One settings round trip as the program does it after the preferences dialog: load
// "Vexo.ini" (with the report styles) and save it in full. Every key is its own store
// call that reads, and for a save rewrites, the whole file. Target: 5 ms or less.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

#include "base/Messages.h"
#include "shell/AppSettings.h"

namespace {

// A scratch application directory holding a full "Vexo.ini" and a "RepStyles.ini" of
// four styles; removed when the benchmark ends.
class SettingsDir {
public:
    SettingsDir()
        : m_path(std::filesystem::temp_directory_path() /
                 ("vexo-bench-settings-" + std::to_string(::getpid()))) {
        std::filesystem::create_directories(m_path);
        std::ofstream styles(m_path / "RepStyles.ini", std::ios::binary);
        for (const char* name : {"Plain", "Ocean", "Forest", "Print"})
            styles << "[" << name << "]\r\nCS_Description=" << name << " colours\r\n"
                   << "CS_TitleFont=Verdana\r\nCS_TitleColor=#000080\r\nCS_TitleBorder=1\r\n"
                   << "CS_HeaderBack=#000080\r\nCS_HeaderFore=#FFFFFF\r\n"
                   << "CS_RowBack=#E0E0FF\r\nCS_RowFore=#000000\r\n\r\n";
        styles.close();
        vexo::AppSettings s;
        s.RepStyle = "Forest";
        s.DefNucLib = "/home/user/Vexo/Vexo.nli";
        s.DetectorPath = "USB:/dev/bus/usb/001/004";
        s.BatchDataDir = "/home/user/batch";
        s.Program = "/usr/bin/analyse";
        s.Arguments = "-f %F -d %D -t %T";
        vexo::SaveSettings(s, false, m_path);
        vexo::SaveSettings(s, true, m_path);
        vexo::SaveFormLocation(vexo::FormLocation{true, 100, 80, 1280, 720, 0}, m_path);
    }
    ~SettingsDir() {
        std::error_code ec;
        std::filesystem::remove_all(m_path, ec);
    }
    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

void BM_SettingsLoadSaveRoundTrip(benchmark::State& state) {
    SettingsDir dir;
    vexo::StderrMessages messages;
    vexo::AppSettings settings;
    for (auto _ : state) {
        bool loaded = vexo::LoadSettings(settings, dir.path(), messages);
        bool saved = vexo::SaveSettings(settings, false, dir.path());
        if (!loaded || !saved || settings.Style.sectionName != "Forest")
            state.SkipWithError("settings round trip failed");
        settings.SpctGraphType = settings.SpctGraphType == 2 ? 3 : 2; // make each save write
    }
}
BENCHMARK(BM_SettingsLoadSaveRoundTrip)->Unit(benchmark::kMillisecond);

void BM_SettingsLoad(benchmark::State& state) {
    SettingsDir dir;
    vexo::StderrMessages messages;
    vexo::AppSettings settings;
    for (auto _ : state)
        benchmark::DoNotOptimize(vexo::LoadSettings(settings, dir.path(), messages));
}
BENCHMARK(BM_SettingsLoad)->Unit(benchmark::kMillisecond);

} // namespace
