#pragma once
// The main window's update codes: what part of the program's state has changed. The
// connection, the acquisition, the batch and the File menu hand one of these to the main
// window's update routine (RefreshMainWindow), which sets its toolbar, menus and status
// bar from it. The values are the program's own change codes.
namespace vexo {

enum class RefreshCode : int {
    All = 0,             // everything: start-up, disconnected
    DeviceState = 1,     // a device was opened
    Acquisition = 2,     // acquisition started, stopped or found stopped
    Connection = 4,      // connected: the "Connected to ..." panel
    RoiSet = 8,          // ROIs added or removed
    OptionsBatch = 16,   // options and the batch panels
    LoadedFromFile = 32, // a spectrum was read from a file
};

} // namespace vexo
