#include "tests/support/rig.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "bench/device_set.h"
#include "bench/devices/connect.h"
#include "bench/devices/device_families.h"
#include "bus/frames.h"
#include "panel/user_input.h"
#include "tables/configuration_store.h"

namespace rig {

namespace {

constexpr int kLastNeedleType = 6;
constexpr platform::Milliseconds kFlightStep{20};
// A needle's way round at its default speed, and a few ticks.
constexpr platform::Milliseconds kSettlingTime{3000};

std::string file_bytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

std::string on_one_line(std::string text) {
    std::replace(text.begin(), text.end(), '\r', ' ');
    std::replace(text.begin(), text.end(), '\n', '/');
    return text;
}

std::uint32_t offset_of(const tables::FunctionRow& function, int sequence_number) {
    const std::int32_t offsets[] = {function.FunctionOffset1, function.FunctionOffset2, function.FunctionOffset3,
                                    function.FunctionOffset4};
    return static_cast<std::uint32_t>(offsets[std::max(sequence_number, 1) - 1]);
}

// Puts an engineering value where a function reads it.
void put_simulator_value(const tables::FunctionRow& function, int sequence_number, float value,
                         simhost::OffsetSpace& space) {
    const std::uint32_t at = offset_of(function, sequence_number);
    const double raw = static_cast<double>(value) * static_cast<double>(function.FunctionDivider) /
                           static_cast<double>(function.FunctionMultiplier) -
                       static_cast<double>(function.FunctionAdd);
    switch (function.FunctionDataType) {
        case 0:
            space.write_u8(at, static_cast<std::uint8_t>(std::lround(raw)));
            break;
        case 1:
        case 2:
            space.write_u16(at, static_cast<std::uint16_t>(std::lround(raw)));
            break;
        case 3:
            space.write_u32(at, static_cast<std::uint32_t>(std::llround(std::clamp(raw, -2147483648.0, 2147483647.0))));
            break;
        default:
            space.write_f64(at, raw);
    }
}

bool shows_needle(const tables::GaugeRow& gauge, int needle) {
    if (gauge.GaugeType < 1 || gauge.GaugeType > kLastNeedleType) {
        return false;
    }
    const bool two = gauge.GaugeType == 3 || gauge.GaugeType == 5 || gauge.GaugeType == 6;
    return needle == 1 ? gauge.GaugeFunction1 > 0 : two && gauge.GaugeFunction2 > 0;
}

}  // namespace

Rig::Rig(SimulatorAtStart at_start, Instruments instruments)
    : flight_(machine.loop, "flight", kFlightStep, [this] { simulator.step(kFlightStep); }) {
    for (const auto& entry : std::filesystem::directory_iterator(PROJECT_ROOT "/demo")) {
        if (entry.is_regular_file()) {
            machine.files.contents[entry.path().filename().string()] = file_bytes(entry.path());
        }
    }
    machine.sim_transport.server = [this](std::uint8_t* block, std::size_t size) {
        return simulator.answer(block, size);
    };
    if (at_start == SimulatorAtStart::absent) {
        machine.sim_transport.windows.clear();
    }
    if (instruments != Instruments::all) {
        keep_needle_gauges(instruments);
    }
    build_bench();
}

Rig::~Rig() = default;

// Takes everything else out of the configuration file.
void Rig::keep_needle_gauges(Instruments kept) {
    auto tables = std::make_unique<tables::CoreTables>();
    tables::ConfigurationStore store(*tables, machine.files, machine.boxes, machine.wall_clock);
    tables->ProgramName = tables::kProgramName;
    tables->ConfigFileName = store.LoadStartFile();
    store.LoadConfiguration();
    for (tables::GaugeRow& row : tables->gauges) {
        if (row.GaugeType > kLastNeedleType) {
            row = {};
        }
    }
    tables->ClusterPort = 0;
    if (kept != Instruments::needles_and_io_modules) {
        tables->IomPort1 = tables->IomPort2 = 0;
    }
    if (kept != Instruments::needles_and_yokes) {
        tables->YokePort1 = tables->YokePort2 = 0;
    }
    machine.files.contents[tables->ConfigFileName] = store.configuration_bytes();
}

void Rig::build_bench() {
    tables::ConfigurationStore store(file_tables_, machine.files, machine.boxes, machine.wall_clock);
    file_tables_.ProgramName = tables::kProgramName;
    file_tables_.ConfigFileName = store.LoadStartFile();
    store.LoadConfiguration();
    if (file_tables_.ConfigError != 0) {
        ADD_FAILURE() << "the demo configuration does not load: " << boxes_shown();
    }
    bench::add_gauges(controller, file_tables_);
    if (file_tables_.GaugeBusPort1 > 0) {
        gauge_wire().record = false;
        bench::connect(controller, gauge_wire());
    }
    hang(cluster, file_tables_.ClusterPort);
    bench::set_up_io_module(module1, file_tables_, bus::kIoModule1Id);
    bench::set_up_io_module(module2, file_tables_, bus::kIoModule2Id);
    hang(module1, file_tables_.IomPort1);
    hang(module2, file_tables_.IomPort2);
    hang(yoke1, file_tables_.YokePort1);
    hang(yoke2, file_tables_.YokePort2);
    machine.boxes.forget_shown();
}

void Rig::hang(bench::LineDevice& device, int port) {
    if (port > 0) {
        machine.serial_ports.wire(port).record = false;
        bench::connect(device, machine.serial_ports.wire(port));
    }
}

void Rig::connect_cluster(int port) {
    hang(cluster, port);
}

platform::manual::Wire& Rig::gauge_wire() {
    return machine.serial_ports.wire(file_tables_.GaugeBusPort1);
}

bench::NeedleGauge& Rig::gauge(int id) {
    auto* needle_gauge = dynamic_cast<bench::NeedleGauge*>(controller.device(id));
    if (needle_gauge == nullptr) {
        ADD_FAILURE() << "there is no needle gauge with id " << id;
        std::abort();
    }
    return *needle_gauge;
}

void Rig::start_program() {
    cockpit.start();
    advance(0ms);
}

void Rig::start_run() {
    start_program();
    for (int second = 0; second < 60 && !running(); ++second) {
        advance(1s);
    }
    if (!running()) {
        ADD_FAILURE() << "no run has started\n" << story();
    }
}

void Rig::stop_simulator() {
    machine.sim_transport.windows.clear();
    simulator.space().clear();
}

void Rig::start_simulator() {
    simulator.restart();
    machine.sim_transport.windows = {"UIPCMAIN"};
}

void Rig::move_every_needle() {
    const bool flying = flight_.enabled();
    hold();
    for (const bool up : {true, false}) {
        for (const tables::GaugeRow& row : file_tables_.gauges) {
            for (int needle = 1; needle <= 2; ++needle) {
                if (shows_needle(row, needle)) {
                    const auto number = static_cast<std::size_t>(needle == 1 ? row.GaugeFunction1 : row.GaugeFunction2);
                    const tables::FunctionRow& function = file_tables_.functions[number];
                    put_simulator_value(function, needle == 1 ? row.GaugeSeqNr1 : row.GaugeSeqNr2,
                                        up ? function.FunctionMaximum : function.FunctionMinimum, sim());
                }
            }
        }
        advance(500ms);
    }
    simulator.step(0ms);
    advance(500ms);
    if (flying) {
        fly();
    }
}

void Rig::set_gauges_up() {
    std::string frames;
    for (int id = 1; id < static_cast<int>(file_tables_.gauges.size()); ++id) {
        if (file_tables_.gauges[static_cast<std::size_t>(id)].GaugeType != 0) {
            bus::append_frame(frames, id, bus::kCommandSpeed, bench::kDefaultStepTimeUs);
            bus::append_frame(frames, id, bus::kCommandResolution, 0);
        }
    }
    gauge_wire().to_device(frames);
}

double simulator_value(const tables::FunctionRow& function, int sequence_number, const simhost::OffsetSpace& space) {
    const std::uint32_t at = offset_of(function, sequence_number);
    double raw = 0;
    switch (function.FunctionDataType) {
        case 0:
            raw = space.read_u8(at);
            raw = raw > 127 ? raw - 255 : raw;
            break;
        case 1:
            raw = space.read_i16(at);
            break;
        case 2:
            raw = space.read_i16(at);
            raw = raw < 0 ? raw + 65535 : raw;
            break;
        case 3:
            raw = space.read_i32(at);
            break;
        case 4:
            raw = static_cast<float>(space.read_f64(at));
            break;
        default:
            ADD_FAILURE() << "no needle shows data type " << int{function.FunctionDataType};
    }
    return (raw + static_cast<double>(function.FunctionAdd)) * static_cast<double>(function.FunctionMultiplier) /
           static_cast<double>(function.FunctionDivider);
}

double plate_position(const tables::Plate& plate, double value) {
    // Straight lines between the points; the ends hold beyond them.
    const auto point_count = static_cast<std::size_t>(plate.PlateValue[1]);
    if (value <= plate.PlateValue[2]) {
        return plate.PlatePosition[2];
    }
    if (value >= plate.PlateValue[3]) {
        return plate.PlatePosition[3];
    }
    for (std::size_t point = 5; point < 4 + point_count + 1 && point < plate.PlateValue.size(); ++point) {
        if (value <= plate.PlateValue[point]) {
            const double share =
                (value - plate.PlateValue[point - 1]) / (plate.PlateValue[point] - plate.PlateValue[point - 1]);
            return plate.PlatePosition[point - 1] +
                   share * (plate.PlatePosition[point] - plate.PlatePosition[point - 1]);
        }
    }
    return plate.PlatePosition[3];
}

testing::AssertionResult Rig::needles_are_right(double tolerance_steps) {
    std::ostringstream wrong;
    int checked = 0;
    for (int id = 1; id < static_cast<int>(file_tables_.gauges.size()); ++id) {
        const tables::GaugeRow& row = file_tables_.gauges[static_cast<std::size_t>(id)];
        for (int needle = 1; needle <= 2; ++needle) {
            if (!shows_needle(row, needle)) {
                continue;
            }
            const auto function_number =
                static_cast<std::size_t>(needle == 1 ? row.GaugeFunction1 : row.GaugeFunction2);
            const auto plate_number = static_cast<std::size_t>(needle == 1 ? row.GaugePlate1 : row.GaugePlate2);
            const int sequence_number = needle == 1 ? row.GaugeSeqNr1 : row.GaugeSeqNr2;
            const tables::FunctionRow& function = file_tables_.functions[function_number];
            const double value = simulator_value(function, sequence_number, sim());
            const double expected = std::clamp(plate_position(file_tables_.plates[plate_number], value), 0.0, 1079.0);
            const double stands = gauge(id).needle_steps(needle);
            ++checked;
            if (!(std::abs(stands - expected) <= tolerance_steps)) {
                wrong << "gauge " << id << " needle " << needle << " stands at " << stands << ", was sent to "
                      << gauge(id).target_steps(needle) << ", should stand at " << expected << " for "
                      << function.FunctionShortName << " = " << value << "\n";
            }
        }
    }
    if (checked == 0) {
        return testing::AssertionFailure() << "the cockpit has no needle";
    }
    if (wrong.str().empty()) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << wrong.str() << story();
}

testing::AssertionResult Rig::needles_settle_right() {
    const bool flying = flight_.enabled();
    hold();
    advance(kSettlingTime);
    auto result = needles_are_right();
    if (flying) {
        fly();
    }
    return result;
}

panel::Control& Rig::control(const std::string& panel, const std::string& name) {
    panel::Panel* const found = cockpit.panels().find(panel);
    panel::Control* const control = found == nullptr ? nullptr : found->find(name);
    if (control == nullptr) {
        ADD_FAILURE() << "there is no " << name << " on a panel " << panel;
        std::abort();
    }
    return *control;
}

void Rig::click(const std::string& panel, const std::string& name, int value) {
    panel::Control& clicked = control(panel, name);
    machine.loop.post_user_command([this, &clicked, value] {
        const auto result = panel::UserInput::apply(clicked, {panel::UserEvent::click, value, {}});
        if (result != panel::InputResult::done) {
            ADD_FAILURE() << "the click on " << clicked.panel().name() << "." << clicked.name() << " was refused\n"
                          << story();
        }
    });
    advance(0ms);
}

std::string Rig::text(const std::string& panel, const std::string& name) {
    return control(panel, name).text;
}

bool Rig::is_visible(const std::string& panel, const std::string& name) {
    return control(panel, name).visible;
}

bool Rig::is_enabled(const std::string& panel, const std::string& name) {
    return control(panel, name).enabled;
}

panel::WindowState Rig::window(const std::string& panel) {
    return control(panel, cockpit.panels().find(panel)->controls().front()->name()).panel().window_state();
}

std::string Rig::boxes_shown() const {
    std::string all;
    for (const std::string& box : machine.boxes.shown()) {
        all += "  box: " + on_one_line(box) + "\n";
    }
    return all;
}

std::string Rig::device_story(int id) {
    const bench::Device* const device = controller.device(id);
    std::ostringstream story;
    if (const auto* needle_gauge = dynamic_cast<const bench::NeedleGauge*>(device)) {
        story << "  gauge " << id << " type " << needle_gauge->identity().type << ": needle 1 "
              << needle_gauge->needle_steps(1) << " of " << needle_gauge->target_steps(1);
        if (needle_gauge->needle_count() == 2) {
            story << ", needle 2 " << needle_gauge->needle_steps(2) << " of " << needle_gauge->target_steps(2);
        }
        if (needle_gauge->has_display()) {
            story << ", display \"" << needle_gauge->display_text() << "\"";
        }
        story << (needle_gauge->lights().lit() ? ", lit" : ", dark") << ", refused "
              << needle_gauge->unknown_commands() + needle_gauge->bad_values() << "\n";
    }
    return story.str();
}

std::string Rig::story() {
    const bench::LineStatistics& line = controller.statistics();
    std::ostringstream story;
    story << "  program: " << text("frmStatus", "BoxRun") << ", start panel \"" << text("frmMain", "frmMainConnection")
          << "\", file \"" << cockpit.tables().ConfigFileName << "\", ConfigError " << cockpit.tables().ConfigError
          << "\n  simulator: link " << (cockpit.sim_com().link_alive() ? "alive" : "dead") << ", result "
          << cockpit.client().IpcResult << ", " << simulator.server().answered_blocks() << " blocks answered, "
          << simulator.server().bad_blocks() << " bad\n  line: " << line.bytes_in << " bytes and " << line.frames_in
          << " frames came, " << line.bad_frames << " bad frames, " << line.stray_bytes << " stray bytes, "
          << line.reports_out << " reports went, port "
          << (cockpit.gauge_bus().serial_port().is_open() ? "open" : "closed") << "\n";
    for (int id = 1; id < static_cast<int>(file_tables_.gauges.size()); ++id) {
        story << device_story(id);
    }
    story << boxes_shown();
    return story.str();
}

}  // namespace rig
