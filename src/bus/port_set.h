#pragma once

#include <array>
#include <string>

#include "platform/boxes.h"
#include "platform/serial_port.h"
#include "tables/core_tables.h"

namespace bus {

// The six serial ports of the system, in the order in which they are opened and closed.
enum class PortPlace { gauge_bus, cluster, iom1, iom2, yoke1, yoke2 };
inline constexpr std::size_t kPortPlaces = 6;

// The panel that owns one of the ports, as opening sees it.
class PortOwner {
  public:
    virtual ~PortOwner() = default;
    virtual platform::SerialPort& serial_port() = 0;
    // Brings send and receive state back to the start; the settings stand, the port is still closed.
    virtual void reset_link() {}
    // The port has been opened and emptied. A Failure thrown here counts as one of the port.
    virtual void link_opened() {}
};

// Line settings of one place.
struct PortSettings {
    std::int16_t tables::CoreTables::*number;  // the table field that holds the port number, 0 = none
    const char* settings;
    std::size_t bytes_per_event;  // receive threshold and read length
};
const PortSettings& port_settings(PortPlace place);

// Opens a closed port under its number with the settings of its place. Throws the port's Failure.
void open_line(platform::SerialPort& port, PortPlace place, int number);

// Opens and closes all serial ports of the system. A configured port whose owner is not part of the program is left
// alone.
class PortSet {
  public:
    PortSet(platform::Boxes& boxes, const tables::CoreTables& tables) : boxes_(boxes), tables_(tables) {}

    // The owner must outlive the set. Null takes it out again.
    void set_owner(PortPlace place, PortOwner* owner) { owners_[static_cast<std::size_t>(place)] = owner; }

    // Opens every port that has a number, afresh where it is open. What goes wrong with a port does not touch the
    // others; one message tells all of it at the end. Blocks in that message. Throws nothing.
    // NOTE: a port whose number has become 0 is closed, so that nothing goes on writing to a device that the
    // configuration no longer names.
    void OpenAllPorts();

    // Closes the open ports of all six places, in their order.
    void CloseAllComPorts();

    // Whether the last OpenAllPorts failed at this place.
    bool failed(PortPlace place) const { return failed_[static_cast<std::size_t>(place)]; }

  private:
    void open_port(std::size_t place, PortOwner& owner, int number, std::string& error_list);

    platform::Boxes& boxes_;
    const tables::CoreTables& tables_;
    std::array<PortOwner*, kPortPlaces> owners_{};
    std::array<bool, kPortPlaces> failed_{};
};

}  // namespace bus
