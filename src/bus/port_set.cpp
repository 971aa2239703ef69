#include "bus/port_set.h"

#include "support/failure.h"
#include "support/steps.h"

namespace bus {

namespace {

using tables::CoreTables;

constexpr std::array<PortSettings, kPortPlaces> kPorts = {{
    {&CoreTables::GaugeBusPort1, "38400,N,8,1", 25},
    {&CoreTables::ClusterPort, "38400,N,8,2", 16},
    {&CoreTables::IomPort1, "38400,N,8,2", 25},
    {&CoreTables::IomPort2, "38400,N,8,2", 25},
    {&CoreTables::YokePort1, "38400,N,8,2", 25},
    {&CoreTables::YokePort2, "38400,N,8,2", 25},
}};

constexpr const char* kLineBreak = "\r\n";

}  // namespace

const PortSettings& port_settings(PortPlace place) {
    return kPorts[static_cast<std::size_t>(place)];
}

void open_line(platform::SerialPort& port, PortPlace place, int number) {
    const PortSettings& settings = port_settings(place);
    port.set_number(number);
    port.set_settings(settings.settings);
    port.set_receive_threshold(settings.bytes_per_event);
    port.set_read_length(settings.bytes_per_event);
    port.open();
}

void PortSet::OpenAllPorts() {
    std::string error_list;
    for (std::size_t place = 0; place < kPortPlaces; ++place) {
        PortOwner* const owner = owners_[place];
        if (owner == nullptr) {
            continue;
        }
        const int number = tables_.*kPorts[place].number;
        if (number > 0) {
            open_port(place, *owner, number, error_list);
        } else if (owner->serial_port().is_open()) {
            owner->serial_port().close();
        }
    }
    if (!error_list.empty()) {
        boxes_.message(std::string("Commmunicaton error COM port(s)") + error_list + kLineBreak +
                       "Check for correct portnumbers" + kLineBreak +
                       "Note: Some Comport errors need a reboot of Windows");
    }
}

void PortSet::open_port(std::size_t place, PortOwner& owner, int number, std::string& error_list) {
    platform::SerialPort& port = owner.serial_port();
    support::Steps steps([&](const support::Failure& failure) {
        if (!failed_[place]) {
            failed_[place] = true;
            error_list +=
                std::string(kLineBreak) + "  - Port nr:" + std::to_string(number) + ", " + failure.description();
        }
        return true;
    });
    // 1. The number.
    failed_[place] = false;
    steps.attempt([&] {
        if (port.is_open()) {
            port.close();
        }
    });
    steps.attempt([&] { port.set_number(number); });
    if (failed_[place]) {
        return;
    }
    // 2. The line.
    steps.attempt([&] { port.set_settings(kPorts[place].settings); });
    steps.attempt([&] { port.set_receive_threshold(kPorts[place].bytes_per_event); });
    steps.attempt([&] { port.set_read_length(kPorts[place].bytes_per_event); });
    // 3. The owner's send and receive state.
    steps.attempt([&] { owner.reset_link(); });
    // 4. Open twice: some adapters deliver what they had kept from before at the first opening.
    steps.attempt([&] { port.open(); });
    steps.attempt([&] {
        if (port.is_open()) {
            port.close();
        }
    });
    steps.attempt([&] { port.open(); });
    steps.attempt([&] { port.clear_output(); });
    steps.attempt([&] { port.read(); });
    // 5. What the owner does with a fresh port.
    steps.attempt([&] { owner.link_opened(); });
}

void PortSet::CloseAllComPorts() {
    for (PortOwner* const owner : owners_) {
        if (owner != nullptr && owner->serial_port().is_open()) {
            owner->serial_port().close();
        }
    }
}

}  // namespace bus
