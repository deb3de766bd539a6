// Loading the device library by name: clear errors for a missing library or export,
// resolution of the library path, and repeated loading within one process.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "SimAnalyser.h"
#include "device/DeviceLibrary.h"

namespace vexo {
namespace {

TEST(DeviceLibraryLoader, RefusalsNameTheFileOrTheMissingExport) {
    test::TempDir dir;
    test::WriteBytes(dir / "libKORVHW.so", "this is not a shared object\n");
    const std::pair<std::filesystem::path, const char*> cases[] = {
        {dir / "libNOPE.so", "Cannot load"},
        {dir / "libKORVHW.so", "Cannot load"},
        // The C maths library loads but exports none of the device operations; the
        // first one looked up is FindDevicesEx.
        {"libm.so.6", "has no export FindDevicesEx"}};
    for (const auto& [path, reason] : cases) {
        DeviceLibraryLoad load = DeviceLibrary::Load(path);
        EXPECT_EQ(load.library, nullptr);
        EXPECT_NE(load.error.find(path.string()), std::string::npos) << load.error;
        EXPECT_NE(load.error.find(reason), std::string::npos) << load.error;
    }
    EXPECT_THROW(DeviceLibrary{dir / "libNOPE.so"}, DeviceLibraryError);
}

TEST(DeviceLibraryLoader, PathFromTheEnvironmentOrBesideTheExecutable) {
    {
        test::ScopedEnv env("VEXO_DEVICE_LIBRARY", "/nowhere/libX.so");
        EXPECT_EQ(DeviceLibrary::ResolvePath(), std::filesystem::path("/nowhere/libX.so"));
        EXPECT_NE(DeviceLibrary::Load().error.find("/nowhere/libX.so"), std::string::npos);
    }
    // The test executables sit beside the simulated library in the build's bin folder.
    test::ScopedEnv env("VEXO_DEVICE_LIBRARY", "");
    EXPECT_EQ(DeviceLibrary::ResolvePath(), test::SimLibraryPath());
    EXPECT_EQ(DeviceLibrary::DefaultFileName(), "libKORVHW.so");
    // It loads twice in one process; a handle never opened is refused, not a crash.
    DeviceLibrary first(test::SimLibraryPath());
    DeviceLibrary second(test::SimLibraryPath());
    EXPECT_EQ(first.functions().OpenDevice, second.functions().OpenDevice);
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
