#pragma once

#include <string_view>

namespace simlink {

// What the start of the program asks of the run and its panel, which stand above it.
class RunStarter {
  public:
    virtual ~RunStarter() = default;

    // Loads and shows frmStatus.
    virtual void show_run_panel() = 0;
    virtual void minimise_run_panel() = 0;
    // Writes frmStatus's Label37, the file of the configuration.
    virtual void set_run_panel_file(std::string_view file_name) = 0;

    virtual void RefreshConfig() = 0;
    virtual void OpenAllPorts() = 0;
    virtual void CloseAllComPorts() = 0;
    virtual void cmdRun_Click() = 0;
};

}  // namespace simlink
