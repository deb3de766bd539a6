// Loading the device library by name: clear errors for a missing library or export,
// resolution of the library path, and repeated loading within one process.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "TestSupport.h"
#include "device/DeviceLibrary.h"

namespace vexo {
namespace {

std::filesystem::path SimulatedLibrary() {
    return test::BinDir() / "libKORVHW.so";
}

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
    test::ScopedEnv env("VEXO_DEVICE_LIBRARY", "/nowhere/libX.so");
    EXPECT_EQ(DeviceLibrary::ResolvePath(), std::filesystem::path("/nowhere/libX.so"));
    DeviceLibraryLoad load = DeviceLibrary::Load();
    EXPECT_EQ(load.library, nullptr);
    EXPECT_NE(load.error.find("/nowhere/libX.so"), std::string::npos);
}

TEST(DeviceLibraryLoader, WithoutEnvironmentTheExecutablesFolderComesFirst) {
    test::ScopedEnv env("VEXO_DEVICE_LIBRARY", "");
    const std::filesystem::path resolved = DeviceLibrary::ResolvePath();
    // The test executables sit beside the simulated library in the build's bin folder.
    if (std::filesystem::exists(SimulatedLibrary())) {
        EXPECT_EQ(resolved, test::BinDir() / "libKORVHW.so");
    }
    EXPECT_EQ(DeviceLibrary::DefaultFileName(), "libKORVHW.so");
}

TEST(DeviceLibraryLoader, SimulatedLibraryLoadsTwice) {
    if (!std::filesystem::exists(SimulatedLibrary()))
        GTEST_SKIP() << "simulated library not built: " << SimulatedLibrary();
    DeviceLibrary first(SimulatedLibrary());
    DeviceLibrary second(SimulatedLibrary());
    EXPECT_EQ(first.functions().OpenDevice, second.functions().OpenDevice);
    // A call on a handle that was never opened is refused with a status, not a crash.
    int32_t status = 0;
    EXPECT_LT(first.getAcquisitionStatus(12345, status), 0);
}

// Builds a shared library exporting every device operation except `missing`, with the
// system's C compiler; returns an empty path when no compiler is available.
std::filesystem::path BuildLibraryWithout(const test::TempDir& dir, const std::string& missing) {
    const char* names[] = {"FindDevicesEx",   "FindDevices",     "GetDeviceInfo",
                           "OpenDevice",      "OpenDeviceEx",    "CloseDevice",
                           "GetParam",        "SetParam",        "StartAcquisition",
                           "StopAcquisition", "ClearAll",        "ClearMemory",
                           "ClearTime",       "RestoreDefaults", "GetAcquisitionStatus",
                           "ReadSpectrum",    "ArmScope",        "GetScopeStatus",
                           "ReadScope",       "SaveSettings"};
    std::string source;
    for (const char* name : names)
        if (missing != name)
            source += std::string("int ") + name + "(void) { return -7; }\n";
    test::WriteBytes(dir / "partial.c", source);
    const auto library = dir / "libPARTIAL.so";
    const std::string command = "cc -shared -fPIC -o '" + library.string() + "' '" +
                                (dir / "partial.c").string() + "' 2>/dev/null";
    if (std::system(command.c_str()) != 0 || !std::filesystem::exists(library))
        return {};
    return library;
}

TEST(DeviceLibraryLoader, EveryExportIsResolvedUpFrontEvenTheUnusedOnes) {
    for (const char* missing : {"RestoreDefaults", "ClearTime", "OpenDeviceEx", "SaveSettings"}) {
        test::TempDir dir;
        const auto library = BuildLibraryWithout(dir, missing);
        if (library.empty())
            GTEST_SKIP() << "no C compiler to build a partial library";
        DeviceLibraryLoad load = DeviceLibrary::Load(library);
        EXPECT_EQ(load.library, nullptr) << missing;
        EXPECT_NE(load.error.find(std::string("has no export ") + missing), std::string::npos)
            << load.error;
    }
    test::TempDir dir;
    const auto complete = BuildLibraryWithout(dir, "");
    ASSERT_FALSE(complete.empty());
    DeviceLibraryLoad load = DeviceLibrary::Load(complete);
    ASSERT_NE(load.library, nullptr) << load.error;
    EXPECT_EQ(load.library->findDevicesEx(0, 50, true), -7);
}

} // namespace
} // namespace vexo
