#pragma once

#include <cstdint>
#include <vector>

namespace run {

inline constexpr float kNothingSent = -1.0F;          // a Last value that differs from every position
inline constexpr std::uint16_t kNeverPolled = 65535;  // a PollSlot that no tick has
// A simulator port number that stands for no port; 65535 in 16 bits without sign.
inline constexpr std::int16_t kNoSimPort = -1;

// The run's view of one row of the gauge table. What the fields hold beyond the general meaning is told by the family
// of the gauge's type.
struct ActiveGauge {
    std::uint16_t ActiveGaugeId = 0;  // 0 = unused entry
    // Simulator ports; some families keep a flag or a step number here.
    std::int16_t Port1 = 0;
    std::int16_t Port2 = 0;
    std::int16_t Port3 = 0;
    std::int16_t Port4 = 0;
    // The last values sent.
    float Last1 = 0;
    float Last2 = 0;
    float Last3 = 0;
    float Last4 = 0;
    float Last5 = 0;
    std::int16_t StepCounter = 0;
    // Radio-magnetic indicators: the simulator ports of their two DME displays, and the distances last sent.
    std::int16_t RmiPortDme1 = kNoSimPort;
    std::int16_t RmiPortDme2 = kNoSimPort;
    float RmiDme1Seen = 0;
    float RmiDme2Seen = 0;
    std::uint16_t PollSlot = kNeverPolled;
    std::uint8_t OnAvionicsBus = 0;  // 1 = the gauge's lights follow the avionics bus
};

// The active gauge list: one entry per gauge in use, in order of gauge id, at least two entries. Rebuilt by
// RefreshConfig, fixed during a run.
using ActiveGauges = std::vector<ActiveGauge>;

}  // namespace run
