#include <algorithm>
#include <string>

#include "bus/frames.h"
#include "run/frm_status.h"
#include "run/instrument_table.h"
#include "run/light_logic.h"
#include "run/system_ports.h"

namespace run {

namespace {

constexpr std::int16_t kDefaultProcessIntervalMs = 40;
constexpr std::size_t kFewestEntries = 2;

}  // namespace

void frmStatus::RefreshConfig() {
    // 1.
    if (sim_com_.PortsOpen == 1) {
        return;
    }
    // 2.
    sim_com_.CloseAllPorts();
    take_process_interval();
    show_configuration();
    // 3.
    show_unit_commands();
    for (const ParticipantPlace place : {ParticipantPlace::iom1, ParticipantPlace::iom2}) {
        RunParticipant* const module = participants_[static_cast<std::size_t>(place)];
        if (module != nullptr && module->hasPort()) {
            module->OpenCommPort();
        }
    }
    // 4. to 8.
    sim_com_.OpenSimCom();
    build_active_list();
    sim_com_.CloseAllPorts();
    set_up_gauges();
    open_system_ports();
    // 9.
    for_each_participant([](RunParticipant& unit) { unit.OpenPorts(); });
    // 10.
    if (tables_.LightMode == kLightsAlwaysOn) {
        tables_.MainBusLightByte = bus::kLightPower | bus::kLightOn;
        tables_.LightChange = 1;
    }
    if (tables_.LightMask == 0) {
        tables_.LightMask = kInstrumentLightsSwitch;
    }
    lights_sent_ = false;
    repaint_lights_ = false;
    // 11., 12.
    context_.LastSlot = static_cast<std::int16_t>(context_.next_poll_slot - 1);
    sim_com_.PortsOpen = 1;
    boxNrofOffsets.text = std::to_string(sim_com_.OpenPortCount);
    // Gives the 10 ms sender a chance to send what set-up has left in TxBuffer.
    platform_.loop.yield_once();
}

void frmStatus::take_process_interval() {
    // NOTE: a negative interval has no meaning; it counts as 0.
    if (tables_.ProcessInterval <= 0) {
        tables_.ProcessInterval = kDefaultProcessIntervalMs;
    }
    BoxXferProcessTimer.text = std::to_string(tables_.ProcessInterval);
    SliderXferTimer.value =
        std::clamp<int>(tables_.ProcessInterval, SliderXferTimer.minimum.get(), SliderXferTimer.maximum.get());
    ProcessTimer.set_interval(platform::Milliseconds(tables_.ProcessInterval));
}

void frmStatus::show_unit_commands() {
    cmdShowECStatus.visible = tables_.ClusterPort > 0;
    cmdShowIOM.visible = tables_.IomPort1 > 0;
    cmdShowIOM2.visible = tables_.IomPort2 > 0;
    CmdShowYokes.visible = tables_.YokePort1 > 0 || tables_.YokePort2 > 0;
}

void frmStatus::build_active_list() {
    context_.active.clear();
    for (int id = 1; id <= bus::kHighestGaugeId; ++id) {
        if (tables_.gauges[static_cast<std::size_t>(id)].GaugeType != 0) {
            ActiveGauge entry;
            entry.ActiveGaugeId = static_cast<std::uint16_t>(id);
            context_.active.push_back(entry);
        }
    }
    if (context_.active.size() < kFewestEntries) {
        context_.active.resize(kFewestEntries);
    }
    context_.ActiveCount = static_cast<std::int16_t>(context_.active.size() - 1);
    entry_in_hand_ = 0;
}

void frmStatus::set_up_gauges() {
    context_.next_poll_slot = 0;
    context_.navigation = {};
    context_.radios = {};
    context_.autopilot = {};
    context_.audio = {};
    // Of all rows: a report may come from a device that the configuration does not know.
    for (tables::GaugeRow& gauge : tables_.gauges) {
        gauge.GaugeWritePort1 = gauge.GaugeWritePort2 = tables::kNoWritePort;
        gauge.GaugeWritePort3 = gauge.GaugeWritePort4 = tables::kNoWritePort;
    }
    for (int index = 0; index <= context_.ActiveCount; ++index) {
        entry_in_hand_ = index;
        sim_com_.PortOwnerId = static_cast<std::int16_t>(context_.entry(index).ActiveGaugeId);
        const InstrumentRow* const row = find_instrument(context_.gauge(index).GaugeType);
        if (row == nullptr || context_.entry(index).ActiveGaugeId == 0) {
            continue;
        }
        context_.entry(index).OnAvionicsBus = row->lights == LightBus::avionics ? 1 : 0;
        if (row->set_up != nullptr) {
            row->set_up(context_, index);
        }
    }
}

void frmStatus::open_system_ports() {
    sim_com_.PortOwnerId = simlink::kOwnerInternal;
    for (std::size_t number = 1; number <= kSystemPorts; ++number) {
        const SystemPortRow& row = system_port(number);
        std::uint8_t sequence_number = row.sequence_number;
        context_.SystemPort[number] = sim_com_.OpenSimPort(row.function, sequence_number);
        if (row.reading == SystemReading::every_cycle) {
            sim_com_.EnableReadSimPort(context_.SystemPort[number]);
        }
    }
}

}  // namespace run
