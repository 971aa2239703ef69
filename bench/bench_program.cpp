#include "bench/bench_program.h"

#include <filesystem>

#include "bench/unattended_boxes.h"
#include "platform/posix/posix_files.h"
#include "platform/posix/posix_machine.h"
#include "support/failure.h"
#include "tables/configuration_store.h"

namespace bench {

namespace {

constexpr platform::Milliseconds kPageInterval{40};
constexpr int kTurnsBetweenBeats = 25;  // a page that hears nothing for three seconds takes the bench for lost

std::shared_ptr<const std::string> shared_text(const std::string& text) {
    return std::make_shared<const std::string>(text);
}

// A link to anything but a pseudo-terminal is the user's own, to real hardware.
bool leads_to_real_hardware(const std::string& link) {
    std::error_code error;
    const std::filesystem::path target = std::filesystem::read_symlink(link, error);
    if (error) {
        return std::filesystem::exists(link, error);
    }
    return target.string().rfind("/dev/pts/", 0) != 0;
}

}  // namespace

void load_tables(const std::string& folder, tables::CoreTables& tables,
                 const std::function<void(const std::string&)>& log) {
    tables::SetConstants(tables);
    tables.ProgramName = tables::kProgramName;
    platform::posix::PosixFiles files(folder);
    platform::posix::PosixWallClock clock;
    UnattendedBoxes boxes(log);
    tables::ConfigurationStore store(tables, files, boxes, clock);
    tables.ConfigFileName = store.LoadStartFile();
    if (files.exists(tables.ConfigFileName)) {
        store.LoadConfiguration();
        if (tables.ConfigError == 0) {
            return;
        }
    }
    log("no configuration in this folder that can be read: the standard set of gauges is used");
    tables = tables::CoreTables();
    fill_standard_tables(tables);
}

BenchProgram::BenchProgram(platform::posix::PosixLoop& loop, std::string folder, const tables::CoreTables& tables,
                           std::span<const web::Asset> assets, web::ServerPorts ports, Log log)
    : loop_(loop),
      folder_(std::move(folder)),
      log_(std::move(log)),
      devices_(loop, tables, kTimelessLine),
      terminal_commands_(devices_, {.unplug = [this](int port) { unplug(port); },
                                    .plug = [this](int port) { plug(port); },
                                    .quit = [this] { loop_.stop(); }}),
      page_commands_(devices_, {.unplug = [this](int port) { unplug(port); },
                                .plug = [this](int port) { plug(port); },
                                .quit = [] { throw support::Failure("only the terminal ends the bench"); }}),
      view_(devices_, [this](int port) { return plugged(port); }),
      server_(loop.io_context(), ports, assets),
      page_timer_(loop, "pages", kPageInterval, [this] { tell_pages(); }) {
    for (const BenchLine& line : devices_.lines()) {
        try {
            plug(line.port);
        } catch (const support::Failure& failure) {
            log_(failure.description());
        }
    }
    // NOTE: the only thing done outside a task of the loop: it reads the devices' state and changes nothing.
    server_.on_open = [this](web::PageSession& page) { page.send(shared_text(view_.everything())); };
    server_.on_message = [this](web::PageSession&, std::string_view text) {
        loop_.post([this, line = std::string(text)] { take_page_command(line); });
    };
    page_timer_.start();
}

BenchProgram::~BenchProgram() {
    server_.on_open = {};
    server_.on_message = {};
}

void BenchProgram::plug(int port) {
    if (plugged(port)) {
        return;
    }
    const std::string link = folder_ + "/ports/COM" + std::to_string(port);
    if (leads_to_real_hardware(link)) {
        throw support::Failure(link + " is not a link of the bench; it is left as it is");
    }
    auto terminal = std::make_unique<platform::posix::PseudoTerminal>(loop_, folder_, port);
    LineDevice& device = *devices_.line(port)->device;
    terminal->on_bytes = [&device](std::string_view bytes) { device.receive(bytes); };
    device.on_send = [line = terminal.get()](std::string_view bytes) { line->write(bytes); };
    terminals_[port] = std::move(terminal);
}

void BenchProgram::unplug(int port) {
    devices_.line(port)->device->on_send = {};
    terminals_.erase(port);
}

void BenchProgram::tell_pages() {
    if (server_.page_count() == 0) {
        return;
    }
    const std::string& changes = view_.changes();
    if (!changes.empty()) {
        quiet_turns_ = 0;
        server_.broadcast(shared_text(changes));
    } else if (++quiet_turns_ >= kTurnsBetweenBeats) {
        quiet_turns_ = 0;
        server_.broadcast(shared_text(R"({"type":"beat"})"));
    }
}

void BenchProgram::take_page_command(const std::string& line) {
    JsonWriter answer;
    answer.begin_object().name("type").value("answer").name("text").value(page_commands_.carry_out(line)).end_object();
    server_.broadcast(shared_text(answer.text()));
}

}  // namespace bench
