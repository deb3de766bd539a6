#pragma once
// The device's "permanent memory": SaveSettings writes the settings of one device
// to <folder>/<serial>.ini (Windows-1252 text, CR LF), and a device powering up
// reads them back over its factory defaults.
#include <filesystem>
#include <string>

#include "DeviceSettings.h"

namespace korvsim {

std::filesystem::path SettingsFilePath(const std::filesystem::path& folder,
                                       const std::string& serial);
// Returns an empty text on success, else why the file could not be written.
std::string SaveSettingsFile(const std::filesystem::path& folder, const std::string& serial,
                             const DeviceSettings& settings);
// Overlays the stored values on settings; keys missing or unreadable keep the value
// they had. Returns false when there is no readable file.
bool LoadSettingsFile(const std::filesystem::path& folder, const std::string& serial,
                      DeviceSettings& settings);

} // namespace korvsim
