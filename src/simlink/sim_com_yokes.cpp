// The yoke functions: each has a port and a variable that both yokes share.

#include <array>
#include <variant>

#include "simlink/sim_com.h"
#include "support/rounding.h"

namespace simlink {

namespace {

enum class Sending { no, yes };

// The width of a variable decides how a value is stored: a flag is 1 above 0, whole numbers are rounded.
using Variable = std::variant<std::uint8_t SimCom::*, std::int16_t SimCom::*, std::int32_t SimCom::*, float SimCom::*>;

struct FfbFunction {
    Variable variable;
    Sending sending = Sending::no;
};

// By FFBOffsetNr.
constexpr std::array<FfbFunction, kFfbFunctions> kFfbFunctionTable = {{
    {&SimCom::FfbOnGround, Sending::no},
    {&SimCom::FfbApMaster, Sending::yes},
    {&SimCom::FfbApRoll, Sending::no},
    {&SimCom::FfbApPitch, Sending::no},
    {&SimCom::FfbElevator, Sending::yes},
    {&SimCom::FfbAileron, Sending::yes},
    {&SimCom::FfbPitchMotion, Sending::no},
    {&SimCom::FfbBankMotion, Sending::no},
    {&SimCom::FfbStall, Sending::no},
    {&SimCom::FfbOverspeed, Sending::no},
    {&SimCom::FfbApAileron, Sending::no},
    {&SimCom::FfbApElevator, Sending::no},
    {&SimCom::FfbTrim, Sending::yes},
    {&SimCom::FfbBrakes, Sending::yes},
    {&SimCom::FfbJoystickButtons, Sending::yes},
    {&SimCom::FfbPtt1, Sending::yes},
    {&SimCom::FfbPtt2, Sending::yes},
    {&SimCom::FfbGroundSpeed, Sending::no},
}};

void store(float value, std::uint8_t& flag) {
    flag = value > 0 ? 1 : 0;
}
void store(float value, std::int16_t& number) {
    number = support::round_to_i16(value);
}
void store(float value, std::int32_t& number) {
    number = support::round_to_i32(value);
}
void store(float value, float& number) {
    number = value;
}

bool is_ffb_function(int FFBOffsetNr) {
    return FFBOffsetNr >= 0 && FFBOffsetNr < kFfbFunctions;
}

}  // namespace

// NOTE: A variable stays as it is when its port gives no value (none open, a write on its way), so that what a yoke has
// just put is not lost.
void SimCom::GetPortFFB(int FFBOffsetNr) {
    if (!is_ffb_function(FFBOffsetNr)) {
        return;
    }
    const auto index = static_cast<std::size_t>(FFBOffsetNr);
    float value = 0;
    if (GetPort(FfbPort[index], value)) {
        std::visit([this, value](auto member) { store(value, this->*member); }, kFfbFunctionTable[index].variable);
    }
}

void SimCom::PutPortFFB(int FFBOffsetNr, [[maybe_unused]] float FFBOffsetValue) {
    if (!is_ffb_function(FFBOffsetNr)) {
        return;
    }
    const auto index = static_cast<std::size_t>(FFBOffsetNr);
    const FfbFunction& function = kFfbFunctionTable[index];
    if (function.sending == Sending::yes) {
        ffb_value_ = std::visit([this](auto member) { return static_cast<float>(this->*member); }, function.variable);
    }
    float value = ffb_value_;
    PutPort(FfbPort[index], value);
}

}  // namespace simlink
