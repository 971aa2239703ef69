// The receive handler of an IO module's panel: what its telegrams do.

#include <algorithm>
#include <charconv>

#include "iomodule/analogue_input.h"
#include "iomodule/frm_status_iom.h"
#include "iomodule/iom_rows.h"
#include "iomodule/switch_action.h"
#include "support/failure.h"

namespace iomodule {

namespace {

constexpr const char* kLineBreak = "\r\n";

constexpr std::array<const char*, 3> kSectionTexts = {"the input from the IO module", "the switches",
                                                      "the analogue inputs"};

// Every byte in hexadecimal, without leading zeros, with a point behind it.
std::string dump_of(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        std::array<char, 2> digits{};
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(),
                                       static_cast<unsigned>(static_cast<unsigned char>(byte)), 16);
        for (const char* digit = digits.data(); digit != end.ptr; ++digit) {
            text += *digit >= 'a' ? static_cast<char>(*digit - 'a' + 'A') : *digit;
        }
        text += '.';
    }
    return text;
}

}  // namespace

void frmStatusIOM::MSComm1_OnComm(platform::SerialEvent event) {
    ErrorSection_ = ErrorSection::telegram;
    switch (event) {
        case platform::SerialEvent::break_received:
        case platform::SerialEvent::framing_error:
            MSComm1_->clear_input();
            break;
        case platform::SerialEvent::receive:
            take_telegram();
            break;
        case platform::SerialEvent::disconnected:
            show_port();
            break;
        case platform::SerialEvent::reconnected:
            repaint_outputs();
            show_port();
            break;
    }
}

void frmStatusIOM::take_telegram() {
    MSComm1_->read_into(LastInput);
    if (LastInput.size() < kShortestTelegram) {
        return;
    }
    bool marked = false;
    attempt(ErrorSection::telegram, 0, [&] {
        if (LastInput.size() < kTelegramLength) {
            throw support::Failure("The telegram has no byte " + std::to_string(kTelegramLength));
        }
        marked =
            telegram_byte(LastInput, 1) == kTelegramStart && telegram_byte(LastInput, kTelegramLength) == kTelegramEnd;
    });
    if (!marked) {
        MSComm1_->clear_input();
        return;
    }
    InputSeen = 1;
    ++telegrams_;
    if (PanelRunning_ != 1) {
        return;
    }
    // A copy: an action may wait in a box, and an opening of the port meanwhile would take the telegram away under it.
    std::array<char, kTelegramLength> bytes;
    std::copy_n(LastInput.begin(), bytes.size(), bytes.begin());
    const std::string_view telegram(bytes.data(), bytes.size());
    take_switches(telegram);
    if (PanelRunning_ == 1) {
        take_analogue_inputs(telegram);
    }
}

void frmStatusIOM::take_switches(std::string_view telegram) {
    SwitchBytes bytes;
    const std::string_view received = switch_bytes_of(telegram);
    std::copy(received.begin(), received.end(), bytes.begin());
    if (bytes == LastSwitchBytes_) {
        return;
    }
    for (int number = 0; number < kSwitches && PanelRunning_ == 1; ++number) {
        take_switch(number, switch_on({bytes.data(), bytes.size()}, number));
    }
    if (PanelRunning_ == 1) {
        LastSwitchBytes_ = bytes;
    }
}

void frmStatusIOM::take_switch(int number, bool on) {
    const auto at = static_cast<std::size_t>(number);
    SwitchState_[at] = on ? 1 : 0;
    boxSwitchIndicator[at].colour = on ? panel::kRed : panel::kBrightGreen;
    if (SwitchState_[at] == LastSwitchState_[at]) {
        return;
    }
    LastSwitchState_[at] = SwitchState_[at];
    const tables::IomRow* const assigned = row(SwitchRow_[at]);
    if (assigned != nullptr) {
        attempt(ErrorSection::switches, number,
                [&] { act_on_switch(sim_com_, tables_, *assigned, on ? Edge::off_on : Edge::on_off); });
    }
}

void frmStatusIOM::take_analogue_inputs(std::string_view telegram) {
    const std::string_view received = analogue_bytes_of(telegram);
    if (analogue_seen_ && std::equal(received.begin(), received.end(), LastAnalogueBytes_.begin())) {
        return;
    }
    analogue_seen_ = true;
    std::copy(received.begin(), received.end(), LastAnalogueBytes_.begin());
    for (int number = 0; number < kAnalogueInputs; ++number) {
        const auto at = static_cast<std::size_t>(number);
        AnalogueValue_[at] = analogue_value(received, number);
        SLiderAnalogue[at].value = std::min<int>(AnalogueValue_[at], SLiderAnalogue[at].maximum);
    }
    for (int number = 0; number < kAnalogueInputs && PanelRunning_ == 1; ++number) {
        take_analogue_input(number);
    }
}

// The last value is replaced in any case, so a movement in steps within the deadband is never written.
void frmStatusIOM::take_analogue_input(int number) {
    const auto at = static_cast<std::size_t>(number);
    const tables::IomRow* const assigned = row(AnalogueRow_[at]);
    if (assigned == nullptr || AnalogueValue_[at] == LastAnalogueValue_[at]) {
        return;
    }
    const int old_value = std::exchange(LastAnalogueValue_[at], AnalogueValue_[at]);
    if (!beyond_deadband(*assigned, old_value, AnalogueValue_[at])) {
        return;
    }
    attempt(ErrorSection::analogue_inputs, number, [&] {
        float value = analogue_output(*assigned, function_of(tables_, *assigned), AnalogueValue_[at]);
        sim_com_.PutPort(assigned->IomSimPort, value);
    });
}

// --- Failures

template <typename Step>
void frmStatusIOM::attempt(ErrorSection section, int signal_number, Step&& step) {
    ErrorSection_ = section;
    signal_in_hand_ = signal_number;
    try {
        step();
    } catch (const support::Failure& failure) {
        ask_to_continue(failure.description());
    }
}

// One signal whose settings are wrong, or a module that sends half telegrams, must not bring a question up 25 times a
// second: each is asked about once in a run.
void frmStatusIOM::ask_to_continue(const std::string& description) {
    constexpr std::array<int, 3> kFirstOfSection = {0, 1, 1 + kSwitches};
    const int place = kFirstOfSection[static_cast<std::size_t>(ErrorSection_)] + signal_in_hand_;
    if (asked_.test(static_cast<std::size_t>(place))) {
        return;
    }
    asked_.set(static_cast<std::size_t>(place));
    if (platform_.boxes.question(failure_text(description)) == platform::Answer::no && sim_com_.exit_program) {
        sim_com_.exit_program();
    }
}

std::string frmStatusIOM::failure_text(const std::string& description) const {
    return std::string("Error IO Module: An error has occured processing: ") +
           kSectionTexts[static_cast<std::size_t>(ErrorSection_)] + kLineBreak + "Error: " + description + kLineBreak +
           "Signal number:" + std::to_string(signal_in_hand_) + kLineBreak + "Message dump:" + dump_of(LastInput) +
           kLineBreak + "Check gauge and/or assigned function." + kLineBreak + "Continue?";
}

}  // namespace iomodule
