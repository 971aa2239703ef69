#pragma once

#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>

#include "bench/bench_commands.h"
#include "bench/cockpit_view.h"
#include "bench/device_set.h"
#include "platform/posix/line_input.h"
#include "platform/posix/posix_loop.h"
#include "platform/posix/pseudo_terminal.h"
#include "web/http_server.h"

namespace bench {

inline constexpr web::ServerPorts kBenchPorts = {8780, 8789};

// Reads the configuration that the folder's start file names. A folder without one, or with one that cannot be read,
// gets the standard set; the log says so.
void load_tables(const std::string& folder, tables::CoreTables& tables,
                 const std::function<void(const std::string&)>& log);

// The bench as a program: the simulated hardware of a configuration on pseudo-terminals linked as ports/COMN in a
// folder, the pages of the virtual cockpit, and text commands.
class BenchProgram {
  public:
    using Log = std::function<void(const std::string&)>;

    // Throws a Failure when no address is free for the pages. A line that cannot be made is left out; the log says so.
    BenchProgram(platform::posix::PosixLoop& loop, std::string folder, const tables::CoreTables& tables,
                 std::span<const web::Asset> assets, web::ServerPorts ports, Log log);
    ~BenchProgram();

    std::string address() const { return server_.address(); }
    const DeviceSet& devices() const { return devices_; }
    // Carries out a command of the terminal; the answer is for its user.
    std::string command(std::string_view line) { return terminal_commands_.carry_out(line); }

  private:
    void plug(int port);
    void unplug(int port);
    bool plugged(int port) const { return terminals_.count(port) != 0; }
    void tell_pages();
    void take_page_command(const std::string& line);

    platform::posix::PosixLoop& loop_;
    std::string folder_;
    Log log_;
    DeviceSet devices_;
    std::map<int, std::unique_ptr<platform::posix::PseudoTerminal>> terminals_;
    BenchCommands terminal_commands_;
    BenchCommands page_commands_;
    CockpitView view_;
    web::HttpServer server_;
    platform::Timer page_timer_;
    int quiet_turns_ = 0;
};

}  // namespace bench
