#pragma once

namespace run {

// The units that have serial ports of their own, in the order in which the run panel calls them.
enum class ParticipantPlace { cluster, iom1, iom2, yokes };
inline constexpr int kParticipantPlaces = 4;

// A unit with a port of its own, as the run panel starts and stops it. Its serial port joins bus::PortSet separately
// (the yokes are one participant with two ports).
class RunParticipant {
  public:
    virtual ~RunParticipant() = default;
    // Whether the configuration gives this unit a port. Nothing below is called when it does not.
    virtual bool hasPort() const = 0;  // NOLINT(readability-identifier-naming): the system's own word
    // Opens the unit's serial port while the run's lists are being built; only the IO modules do this here.
    virtual void OpenCommPort() {}
    // Opens the unit's simulator ports, last of all, while the run's lists are being built.
    virtual void OpenPorts() = 0;
    virtual void cmdRun_Click() = 0;
    virtual void cmdStop_Click() = 0;
};

}  // namespace run
