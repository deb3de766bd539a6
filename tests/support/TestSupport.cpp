#include "TestSupport.h"

#include <atomic>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

namespace vexo::test {

TempDir::TempDir() {
    static std::atomic<int> counter{0};
    auto base = std::filesystem::temp_directory_path();
    for (int attempt = 0; attempt < 100; ++attempt) {
        auto candidate =
            base / ("vexo-test-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
        if (std::filesystem::create_directory(candidate)) {
            m_path = candidate;
            return;
        }
    }
    throw std::runtime_error("cannot create a temporary folder");
}

TempDir::~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(m_path, ec);
}

void WriteBytes(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary);
    out << bytes;
}

std::string ReadBytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

std::filesystem::path TestDataDir() {
    return VEXO_TEST_DATA_DIR;
}
std::filesystem::path SharedDir() {
    return VEXO_SHARED_DIR;
}
std::filesystem::path BinDir() {
    return VEXO_BIN_DIR;
}

} // namespace vexo::test
