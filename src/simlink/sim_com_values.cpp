// Values of ports: GetPort, GetPortRaw, PutPort and the macros.

#include "simlink/port_conversion.h"
#include "simlink/sim_com.h"
#include "simlink/sim_offsets.h"
#include "support/failure.h"
#include "support/number_format.h"
#include "support/rounding.h"
#include "support/steps.h"

namespace simlink {

namespace {

// Macro numbers (FunctionMask of a function of type Macro).
constexpr std::int16_t kMacroPosition = 1;
constexpr std::int16_t kMacroKeystroke = 2;
constexpr std::int16_t kMacroDimmer = 3;

// Macro 1: a control position of -16383..16383 on a scale of 944 steps about its middle.
constexpr double kPositionRange = 16383;
constexpr double kPositionMiddle = 472;

bool is_macro(const tables::FunctionRow& function) {
    return function.FunctionType == tables::kFunctionTypeMacro;
}

std::string port_lines(int PortNr) {
    return "Port Number: " + std::to_string(PortNr) + "\n";
}

std::string description_lines(std::string_view description) {
    return "Error description: " + std::string(description) +
           "\nCheck function definition for limits and calculation (pre-add/multiply/divide).\n";
}

}  // namespace

bool SimCom::can_give_value(int PortNr) const {
    if (!is_port(PortNr)) {
        return false;
    }
    const SimPort& port = ports_[static_cast<std::size_t>(PortNr)];
    return port.ReadEnabled == 1 && port.WritePending == 0;
}

bool SimCom::read_port(int PortNr, Reading reading, float& value) {
    const SimPort& port = ports_[static_cast<std::size_t>(PortNr)];
    const tables::FunctionRow& function = function_of(port);
    if (reading == Reading::raw) {
        return raw_value(port, function, value) == ConversionOutcome::value_given;
    }
    return engineering_value(port, function, value) == ConversionOutcome::value_given;
}

bool SimCom::GetPort(int PortNr, float& value) {
    if (!can_give_value(PortNr)) {
        return false;
    }
    const tables::FunctionRow& function = function_of(ports_[static_cast<std::size_t>(PortNr)]);
    if (is_macro(function)) {
        return get_macro(function.FunctionMask, value);
    }
    try {
        return read_port(PortNr, Reading::engineering, value);
    } catch (const support::Failure& failure) {
        question_reading(PortNr, Reading::engineering, failure.description());
        return false;
    }
}

bool SimCom::GetPortRaw(int PortNr, float& value) {
    if (!can_give_value(PortNr)) {
        return false;
    }
    try {
        return read_port(PortNr, Reading::raw, value);
    } catch (const support::Failure& failure) {
        question_reading(PortNr, Reading::raw, failure.description());
        return false;
    }
}

bool SimCom::get_macro(int macro, float& value) {
    if (macro == kMacroPosition) {
        const double position = ApMaster == 1 && macro1_gate_ == 1 ? macro1_position_ : 0;
        value = static_cast<float>(position / kPositionRange * kPositionMiddle + kPositionMiddle);
        append_read(kOffsetMacro1Position, sizeof macro1_position_, &macro1_position_);
        append_read(kOffsetApMaster, sizeof ApMaster, &ApMaster);
        append_read(kOffsetMacro1Gate, sizeof macro1_gate_, &macro1_gate_);
        return true;
    }
    if (macro == kMacroDimmer) {
        value = tables_.MacroValue;
        return true;
    }
    return false;
}

void SimCom::PutPort(int PortNr, float& value) {
    if (!is_port(PortNr)) {
        return;
    }
    support::Steps steps([&](const support::Failure& failure) {
        question_writing(PortNr, value, failure.description());
        return true;
    });
    // The ports may have been closed while a question was open, so every step looks for its port anew.
    steps.attempt([&] { value = scaled_back(value, function_of(ports_[static_cast<std::size_t>(PortNr)])); });
    if (!is_port(PortNr)) {
        return;
    }
    SimPort& port = ports_[static_cast<std::size_t>(PortNr)];
    const tables::FunctionRow& function = function_of(port);
    port.WritePending = 1;
    if (!is_macro(function)) {
        steps.attempt([&] { store_in_slot(value, function, port); });
        share_masked_byte(port);
    } else if (function.FunctionMask == kMacroKeystroke) {
        steps.attempt([&] { macro2_value_ = support::round_to_u8(value); });
        append_write(kOffsetMacro2, sizeof macro2_value_, &macro2_value_);
        if (value == 1.0F) {
            TimerMacroExecution.start();
        } else {
            TimerMacroExecution.stop();
        }
    } else if (function.FunctionMask == kMacroDimmer) {
        steps.attempt([&] { tables_.MacroValue = support::round_to_i16(value); });
    }
}

// Several functions may each have a bit of one byte (the light switches). When some of them are put before the
// simulator has given the byte again, each must build on the one before; otherwise the last one would undo the others.
void SimCom::share_masked_byte(const SimPort& written) {
    const tables::FunctionRow& function = function_of(written);
    if (function.FunctionMask == 0 || function.FunctionDataType != tables::kByte) {
        return;
    }
    const PortOffset at = offset_of(function, written.FxSeqnr);
    for (SimPort& port : ports_) {
        const tables::FunctionRow& other = function_of(port);
        if (other.FunctionMask != 0 && other.FunctionDataType == tables::kByte && !is_macro(other) &&
            offset_of(other, port.FxSeqnr).offset == at.offset) {
            port.ByteValue = written.ByteValue;
            port.ByteShared = 1;
        }
    }
}

// NOTE: A value that can be read again while the question stands (the simulator has sent a sound one) settles it, so
// that one bad value does not hold up an unattended cockpit.
void SimCom::question_reading(int PortNr, Reading reading, std::string_view description) {
    const std::string number = std::to_string(ports_[static_cast<std::size_t>(PortNr)].FxNumber);
    std::string text;
    if (reading == Reading::raw) {
        text = "Error at getting function: " + number + " from simulator\n" + port_lines(PortNr);
    } else {
        text = "Error at getting function nr.:" + number + "from Simulator.\n" + port_lines(PortNr) +
               description_lines(description);
    }
    go_on_or_exit(text + "Continue?", [this, PortNr, reading] {
        try {
            float value = 0;
            return !can_give_value(PortNr) || read_port(PortNr, reading, value);
        } catch (const support::Failure&) {
            return false;
        }
    });
}

void SimCom::question_writing(int PortNr, float value, std::string_view description) {
    const std::string number = std::to_string(ports_[static_cast<std::size_t>(PortNr)].FxNumber);
    go_on_or_exit("Error at putting function:" + number + ", Value:" + support::shortest(value) + " to Simulator.\n" +
                      port_lines(PortNr) + description_lines(description) + "Continue?",
                  {});
}

}  // namespace simlink
