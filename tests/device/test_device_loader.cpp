// Loading the device library by name: clear errors for a missing library or export,
// resolution of the library path, and repeated loading within one process.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "TestSupport.h"
#include "device/DeviceLibrary.h"

namespace vexo {
namespace {

// Sets an environment variable for one scope and restores it afterwards.
class ScopedEnv {
public:
    ScopedEnv(const char* name, const std::string& value) : m_name(name) {
        if (const char* old = std::getenv(name)) {
            m_had = true;
            m_old = old;
        }
        setenv(name, value.c_str(), 1);
    }
    ~ScopedEnv() {
        if (m_had)
            setenv(m_name, m_old.c_str(), 1);
        else
            unsetenv(m_name);
    }

private:
    const char* m_name;
    bool m_had = false;
    std::string m_old;
};

std::filesystem::path SimulatedLibrary() { return test::BinDir() / "libKORVHW.so"; }

TEST(DeviceLibraryLoader, MissingLibraryIsNamedInTheError) {
    test::TempDir dir;
    const auto missing = dir / "libNOPE.so";
    DeviceLibraryLoad load = DeviceLibrary::Load(missing);
    EXPECT_EQ(load.library, nullptr);
    EXPECT_NE(load.error.find(missing.string()), std::string::npos) << load.error;
    EXPECT_THROW(DeviceLibrary{missing}, DeviceLibraryError);
}

TEST(DeviceLibraryLoader, NotALibraryIsRefused) {
    test::TempDir dir;
    test::WriteBytes(dir / "libKORVHW.so", "this is not a shared object\n");
    DeviceLibraryLoad load = DeviceLibrary::Load(dir / "libKORVHW.so");
    EXPECT_EQ(load.library, nullptr);
    EXPECT_NE(load.error.find("libKORVHW.so"), std::string::npos) << load.error;
}

TEST(DeviceLibraryLoader, LibraryWithoutTheExportsNamesTheMissingOne) {
    // The C maths library loads fine but exports none of the device operations; the
    // first one looked up is FindDevicesEx.
    DeviceLibraryLoad load = DeviceLibrary::Load("libm.so.6");
    if (load.error.find("Cannot load") != std::string::npos)
        GTEST_SKIP() << "no libm.so.6 on this system: " << load.error;
    ASSERT_EQ(load.library, nullptr);
    EXPECT_NE(load.error.find("has no export FindDevicesEx"), std::string::npos) << load.error;
    EXPECT_NE(load.error.find("libm.so.6"), std::string::npos) << load.error;
}

TEST(DeviceLibraryLoader, EnvironmentOverridesThePath) {
    ScopedEnv env("VEXO_DEVICE_LIBRARY", "/nowhere/libX.so");
    EXPECT_EQ(DeviceLibrary::ResolvePath(), std::filesystem::path("/nowhere/libX.so"));
    DeviceLibraryLoad load = DeviceLibrary::Load();
    EXPECT_EQ(load.library, nullptr);
    EXPECT_NE(load.error.find("/nowhere/libX.so"), std::string::npos);
}

TEST(DeviceLibraryLoader, WithoutEnvironmentTheExecutablesFolderComesFirst) {
    ScopedEnv env("VEXO_DEVICE_LIBRARY", "");
    const std::filesystem::path resolved = DeviceLibrary::ResolvePath();
    // The test executables sit beside the simulated library in the build's bin folder.
    if (std::filesystem::exists(SimulatedLibrary())) {
        EXPECT_EQ(resolved, test::BinDir() / "libKORVHW.so");
    }
    EXPECT_EQ(DeviceLibrary::DefaultFileName(), "libKORVHW.so");
}

TEST(DeviceLibraryLoader, SimulatedLibraryResolvesEveryExportAndLoadsTwice) {
    if (!std::filesystem::exists(SimulatedLibrary()))
        GTEST_SKIP() << "simulated library not built: " << SimulatedLibrary();
    DeviceLibrary first(SimulatedLibrary());
    DeviceLibrary second(SimulatedLibrary());
    const KorvhwFunctions& fn = first.functions();
    for (const void* p : {(const void*)fn.FindDevicesEx, (const void*)fn.FindDevices,
                          (const void*)fn.GetDeviceInfo, (const void*)fn.OpenDevice,
                          (const void*)fn.OpenDeviceEx, (const void*)fn.CloseDevice,
                          (const void*)fn.GetParam, (const void*)fn.SetParam,
                          (const void*)fn.StartAcquisition, (const void*)fn.StopAcquisition,
                          (const void*)fn.ClearAll, (const void*)fn.ClearMemory,
                          (const void*)fn.ClearTime, (const void*)fn.RestoreDefaults,
                          (const void*)fn.GetAcquisitionStatus, (const void*)fn.ReadSpectrum,
                          (const void*)fn.ArmScope, (const void*)fn.GetScopeStatus,
                          (const void*)fn.ReadScope, (const void*)fn.SaveSettings})
        EXPECT_NE(p, nullptr);
    EXPECT_EQ(first.functions().OpenDevice, second.functions().OpenDevice);
    // A call on a handle that was never opened is refused with a status, not a crash.
    int32_t status = 0;
    EXPECT_LT(first.getAcquisitionStatus(12345, status), 0);
}

} // namespace
} // namespace vexo
