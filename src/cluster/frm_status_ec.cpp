#include "cluster/frm_status_ec.h"

#include <utility>
#include <vector>

#include "bus/port_lamp.h"
#include "panel/layout.h"
#include "run/plate_lookup.h"
#include "run/run_lamp.h"
#include "support/number_format.h"

namespace cluster {

namespace {

constexpr platform::Milliseconds kProcessInterval{40};
constexpr platform::Milliseconds kOneSecond{1000};
constexpr const char* kValuePicture = "###00.00";
constexpr const char* kNoReply = "No Reply";

// Rows of the engine cluster settings beside those of the needles.
constexpr int kEnginesRow = 9;
constexpr std::int16_t kDualEngine = 2;
constexpr std::int16_t kHasDisplay = 1;

// ClusterRecalibrate.
constexpr std::int16_t kIdle = 0;
constexpr std::int16_t kStart = 1;
constexpr std::int16_t kEnd = 2;
constexpr std::int16_t kRecalibrateSeconds = 5;

template <std::size_t... Index>
std::array<panel::Label, sizeof...(Index)> make_labels(panel::Panel& panel, std::index_sequence<Index...>) {
    return {{panel::Label(panel, "LabelFunction", {}, static_cast<int>(Index))...}};
}

template <std::size_t... Index>
std::array<panel::TextBox, sizeof...(Index)> make_boxes(panel::Panel& panel, std::index_sequence<Index...>) {
    return {{panel::TextBox(panel, "boxValue", Index < kNeedlesPerEngine ? "Engine 1" : "Engine 2",
                            panel::Access::read_only, static_cast<int>(Index))...}};
}

}  // namespace

frmStatusEC::frmStatusEC(const ClusterParts& parts)
    : Panel("frmStatusEC", "Engine cluster"),
      BoxRun(*this, "BoxRun", "State"),
      boxPort(*this, "boxPort", "Port"),
      boxUnitReply(*this, "boxUnitReply", "Reply of the unit"),
      boxNrOfUpdates(*this, "boxNrOfUpdates", "Updates per second"),
      cmdRun(*this, "cmdRun", "Run"),
      cmdStop(*this, "cmdStop", "Stop"),
      CmdClose(*this, "CmdClose", "Close"),
      LabelFunction(make_labels(*this, std::make_index_sequence<kNeedlesPerEngine>{})),
      boxValue(make_boxes(*this, std::make_index_sequence<kNeedles>{})),
      ProcessTimer(parts.platform.loop, "frmStatusEC.ProcessTimer", kProcessInterval, [this] { ProcessTimer_Timer(); }),
      Timer1000ms(parts.platform.loop, "frmStatusEC.Timer1000ms", kOneSecond, [this] { Timer1000ms_Timer(); }),
      platform_(parts.platform),
      tables_(parts.tables),
      sim_com_(parts.sim_com),
      ports_(parts.ports),
      panels_(parts.panels),
      state_(parts.state),
      MSComm1_(parts.platform.serial_ports.create()),
      // One broken row must not bring a question up 25 times a second: it is asked once in a run.
      steps_(
          [this](const support::Failure&) { return std::exchange(data_failure_told_, true) || asks_to_continue({}); }) {
    ClusterPortNr_.fill(simlink::kNoPort);
    ClusterTelegram_.reserve(kTelegramLength);
    boxUnitReply.text = kNoReply;
    cmdRun.on_click = [this] { cmdRun_Click(); };
    cmdStop.on_click = [this] { cmdStop_Click(); };
    CmdClose.on_click = [this] { panels_.hide(*this); };
    set_tool_tips();
    arrange();
    show_halted();
    show_port();
    MSComm1_->set_event_handler([this](platform::SerialEvent event) { MSComm1_OnComm(event); });
    ports_.set_owner(bus::PortPlace::cluster, this);
}

frmStatusEC::~frmStatusEC() {
    ports_.set_owner(bus::PortPlace::cluster, nullptr);
}

void frmStatusEC::set_tool_tips() {
    BoxRun.tool_tip = "Running: the cluster follows the simulator. Halted: it stands still";
    boxPort.tool_tip = "Serial port of the engine cluster; one that was unplugged is opened again by itself";
    boxUnitReply.tool_tip = "Version that the cluster has told; it works without a reply too";
    boxNrOfUpdates.tool_tip = "Telegrams sent in the last second";
    cmdRun.tool_tip = "Start moving the needles of the cluster";
    cmdStop.tool_tip = "Stop moving the needles of the cluster; the rest of the cockpit goes on";
    CmdClose.tool_tip = "Close this panel; the cluster goes on";
    for (panel::TextBox& box : boxValue) {
        box.tool_tip = "Value from the simulator, limited to the range of the needle's plate";
    }
}

void frmStatusEC::arrange() {
    std::vector<panel::LayoutNode> parts = {
        panel::row({BoxRun, boxPort, boxUnitReply, boxNrOfUpdates, cmdRun, cmdStop, CmdClose})};
    for (std::size_t number = 0; number < kNeedlesPerEngine; ++number) {
        parts.push_back(panel::frame(
            "Needle " + std::to_string(number + 1),
            {LabelFunction[number], panel::row({boxValue[number], boxValue[number + kNeedlesPerEngine]})}));
    }
    set_layout(panel::column(std::move(parts)));
}

void frmStatusEC::Form_Load() {
    show_functions();
}

void frmStatusEC::Form_Activate() {
    show_functions();
    show_port();
}

bool frmStatusEC::dual_engine() const {
    return row(kEnginesRow).ClusterSetting1 == kDualEngine;
}

void frmStatusEC::show_functions() {
    for (int number = 0; number < kNeedlesPerEngine; ++number) {
        const int function = row(number).ClusterSetting2;
        const auto at = static_cast<std::size_t>(number);
        const bool named = function > 0 && function < tables::kFunctionRows;
        LabelFunction[at].text =
            named ? std::string_view(tables_.functions[static_cast<std::size_t>(function)].FunctionShortName) : "";
        LabelFunction[at].visible = function != 0;
        boxValue[at].visible = function != 0;
        boxValue[at + kNeedlesPerEngine].visible = function != 0;
    }
}

void frmStatusEC::show_port() {
    bus::show_port(boxPort, *MSComm1_, tables_.ClusterPort);
}

void frmStatusEC::show_running() {
    run::show_running(BoxRun, cmdRun, cmdStop);
}

void frmStatusEC::show_halted() {
    run::show_halted(BoxRun, cmdRun, cmdStop);
}

void frmStatusEC::show_reply() {
    if (ClusterReply_.empty()) {
        return;
    }
    number_text_ = "Version: ";
    number_text_.push_back(ClusterReply_[0]);
    number_text_.push_back('.');
    number_text_.append(ClusterReply_, 1, 1);
    boxUnitReply.text = number_text_;
}

void frmStatusEC::OpenPorts() {
    sim_com_.PortOwnerId = simlink::kOwnerCluster;
    ClusterPortNr_.fill(simlink::kNoPort);
    position_.fill(0);
    for (panel::TextBox& box : boxValue) {
        box.text = "";
    }
    show_functions();
    const auto open = [this](int function, std::uint8_t sequence_number) {
        const std::int16_t port = sim_com_.OpenSimPort(static_cast<std::int16_t>(function), sequence_number);
        sim_com_.EnableReadSimPort(port);
        return port;
    };
    for (int number = 0; number < kNeedlesPerEngine; ++number) {
        const int function = row(number).ClusterSetting2;
        if (function == 0) {
            continue;
        }
        const auto entry = static_cast<std::size_t>(number);
        ClusterPortNr_[entry] = open(function, 1);
        if (dual_engine()) {
            ClusterPortNr_[entry + std::size_t{kSecondEnginePorts}] = open(function, 2);
        }
    }
}

// NOTE: opening all ports cuts off the units that run already, so it is done only when this port is closed, and not
// again when it has failed just now and the user has been told; then Timer1000ms goes on trying.
void frmStatusEC::cmdRun_Click() {
    if (running_) {
        return;
    }
    running_ = true;
    show_running();
    data_failure_told_ = false;
    write_failure_told_ = false;
    retry_open();
    if (!MSComm1_->is_open() && !ports_.failed(bus::PortPlace::cluster)) {
        ports_.OpenAllPorts();
    }
    if (!running_) {
        return;  // stopped while a message was open
    }
    show_port();
    ClusterTelegram_.clear();
    ClusterFrames_ = 0;
    ProcessTimer.start();
    Timer1000ms.start();
}

void frmStatusEC::cmdStop_Click() {
    if (!running_) {
        return;
    }
    running_ = false;
    ProcessTimer.stop();
    Timer1000ms.stop();
    show_halted();
}

// NOTE: the wait is set here already: at 0 the run panel's next countdown would take the request back before the first
// telegram has gone out.
void frmStatusEC::Recalibrate() {
    state_.ClusterRecalibrate = kStart;
    state_.ClusterRecalibrateWait = kRecalibrateSeconds;
    cmdRun_Click();
}

void frmStatusEC::MoveSingleNeedle(int index, int position) {
    if (index < 0 || index >= kNeedles) {
        return;
    }
    begin_telegram(ClusterTelegram_, kTelegramNormal, kFillZero);
    put_needle(ClusterTelegram_, index, position);
    finish_telegram(ClusterTelegram_, state_);
    try {
        MSComm1_->write(ClusterTelegram_);
    } catch (const support::Failure&) {
        platform_.boxes.message("Comm Port for Engine Cluster not found");
    }
}

void frmStatusEC::ProcessTimer_Timer() {
    try {
        process_tick();
    } catch (const support::StepsAbandoned&) {
        cmdStop_Click();
    }
}

void frmStatusEC::process_tick() {
    // 1.
    show_reply();
    // 2.
    begin_telegram(ClusterTelegram_, kTelegramNormal, kFillBlank);
    next_display_ = 0;
    // 3.
    for (int number = 0; number < kNeedlesPerEngine && running_; ++number) {
        if (row(number).ClusterSetting2 != 0) {
            serve_row(number);
        }
    }
    if (!running_) {
        return;  // stopped while a question was open
    }
    // 4., 5.
    put_recalibration();
    // 6.
    finish_telegram(ClusterTelegram_, state_);
    // 7.
    send_telegram();
}

void frmStatusEC::serve_row(int row_number) {
    const bool dual = dual_engine();
    const int second_needle = row_number + kNeedlesPerEngine;
    serve_needle(row_number, row_number, ClusterPortNr(row_number));
    if (dual) {
        serve_needle(row_number, second_needle, ClusterPortNr(row_number + kSecondEnginePorts));
    } else {
        boxValue[static_cast<std::size_t>(second_needle)].text = "0";
        put_needle(ClusterTelegram_, second_needle, 0);
    }
    if (row(row_number).ClusterSetting1 == kHasDisplay) {
        put_next_display(row_number);
        if (dual) {
            put_next_display(second_needle);
        }
    }
}

void frmStatusEC::serve_needle(int row_number, int needle, std::int16_t port) {
    steps_.attempt([&] { read_needle(row_number, needle, port); });
    put_needle(ClusterTelegram_, needle, position_[static_cast<std::size_t>(needle)]);
}

// A needle without a value, or with one that is no number, stays where it was, and so does its box.
void frmStatusEC::read_needle(int row_number, int needle, std::int16_t port) {
    const int plate_number = row(row_number).ClusterSetting3;
    const tables::Plate* const plate = run::find_plate(tables_, plate_number);
    if (plate == nullptr) {
        throw support::Failure("There is no plate " + std::to_string(plate_number));
    }
    // While the lists of the run are being built the port numbers are not those of the open ports.
    float port_value = 0;
    if (sim_com_.PortsOpen != 1 || !sim_com_.GetPort(port, port_value)) {
        return;
    }
    double value = port_value;
    const std::optional<int> position = cluster_position(*plate, value);
    if (!position) {
        return;
    }
    position_[static_cast<std::size_t>(needle)] = *position;
    support::format_number(value, kValuePicture, number_text_);
    if (number_text_.front() == '-' && row(row_number).ClusterSetting1 == kHasDisplay) {
        number_text_ = "0";  // a display knows no sign
    }
    boxValue[static_cast<std::size_t>(needle)].text = number_text_;
}

void frmStatusEC::put_next_display(int needle) {
    put_display(ClusterTelegram_, next_display_, boxValue[static_cast<std::size_t>(needle)].text.get());
    next_display_ = (next_display_ + 1) % kDisplays;
}

void frmStatusEC::put_recalibration() {
    if (state_.ClusterRecalibrate == kEnd) {
        begin_telegram(ClusterTelegram_, kTelegramNormal, kFillZero);
        state_.ClusterRecalibrate = kIdle;
    } else if (state_.ClusterRecalibrate == kStart) {
        begin_telegram(ClusterTelegram_, kTelegramRecalibrate, kFillRecalibrate);
        state_.ClusterRecalibrate = kEnd;
        state_.ClusterRecalibrateWait = kRecalibrateSeconds;
    }
}

void frmStatusEC::send_telegram() {
    if (!MSComm1_->is_open() || (write_failure_told_ && !MSComm1_->connected())) {
        return;  // not there, and the user knows
    }
    try {
        MSComm1_->clear_input();
        MSComm1_->write(ClusterTelegram_);
        ++ClusterFrames_;
        write_failure_told_ = false;
    } catch (const support::Failure&) {
        ask_about_write_failure();
    }
}

// Asked once per outage, not at every tick: a cluster that is unplugged and plugged in again takes the question with it
// and needs no hand.
void frmStatusEC::ask_about_write_failure() {
    if (std::exchange(write_failure_told_, true)) {
        return;
    }
    std::function<bool()> settled;
    if (!MSComm1_->connected()) {
        settled = [this] { return MSComm1_->connected(); };
    }
    if (!asks_to_continue(settled)) {
        cmdStop_Click();
    }
}

bool frmStatusEC::asks_to_continue(const std::function<bool()>& settled) {
    return platform_.boxes.question(
               "Engine Cluster incorrect data or data out of range\r\n"
               "Check boxes for incorrect values and adapt configuration file to correct\r\nContinue?",
               settled) == platform::Answer::yes;
}

void frmStatusEC::Timer1000ms_Timer() {
    if (state_.ClusterRecalibrateWait > 0) {
        --state_.ClusterRecalibrateWait;
    }
    boxNrOfUpdates.text = std::to_string(ClusterFrames_);
    ClusterFrames_ = 0;
    retry_open();
    show_port();
}

// Opens the port if it is closed and has a number. Quiet when that fails: its opening with the others has told.
void frmStatusEC::retry_open() {
    if (MSComm1_->is_open() || !ports_.failed(bus::PortPlace::cluster) || !hasPort()) {
        return;
    }
    try {
        bus::open_line(*MSComm1_, bus::PortPlace::cluster, tables_.ClusterPort);
    } catch (const support::Failure&) {
        return;
    }
    link_opened();
}

void frmStatusEC::reset_link() {
    ClusterTelegram_.clear();
    write_failure_told_ = false;
}

void frmStatusEC::link_opened() {
    ClusterReply_.clear();
    boxUnitReply.text = kNoReply;
}

void frmStatusEC::MSComm1_OnComm(platform::SerialEvent event) {
    switch (event) {
        case platform::SerialEvent::break_received:
        case platform::SerialEvent::framing_error:
            MSComm1_->clear_input();
            break;
        case platform::SerialEvent::receive:
            take_reply();
            break;
        case platform::SerialEvent::disconnected:
            link_opened();  // what it has told is no longer true
            show_port();
            break;
        case platform::SerialEvent::reconnected:
            show_port();
            break;
    }
}

// Only the first 16 bytes count; the rest of a longer reply is dropped, so that it is not taken for the next one.
void frmStatusEC::take_reply() {
    const std::string input = MSComm1_->read();
    MSComm1_->clear_input();
    if (const std::optional<std::string_view> version = reply_version(input)) {
        ClusterReply_ = *version;
    }
}

}  // namespace cluster
