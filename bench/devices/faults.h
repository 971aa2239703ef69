#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace bench {

// What can be wrong with a device on the bus.
enum class Fault : std::uint8_t {
    none,
    mute,          // obeys, but never answers
    deaf,          // neither obeys nor answers, as without power
    drop_reply,    // the report is lost on the way
    corrupt_byte,  // the report's last byte arrives wrong
    half_report,   // the report breaks off in the middle
    wrong_id,      // answers with the id above its own
    wrong_type,    // answers with a type code that nobody has
    late_reply,    // answers when nobody expects it any more
    noise,         // stray bytes run before the report
};

// What a reply that suffers corrupt_byte ends with, and what runs before one that suffers noise.
inline constexpr int kWrongLastByte = 0x55;
inline constexpr std::string_view kNoiseBeforeReply = "\x03\x7F\xC1";

// The name of a fault as it is written in commands ("drop_reply"), and back; nothing for a text that is none.
std::string_view fault_name(Fault fault);
std::optional<Fault> fault_of_name(std::string_view name);

}  // namespace bench
