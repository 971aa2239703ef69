#include "bench/devices/io_module.h"

#include <algorithm>
#include <charconv>

#include "iomodule/led_output.h"

namespace bench {

using namespace iomodule;

namespace {

constexpr int kOwnType = 10;  // as a device that is asked who it is
constexpr int kDeviceByte = 2;
constexpr int kTypeByte = 3;
constexpr int kVersionByte = 5;

template <std::size_t kLength>
std::string_view view_of(const std::array<char, kLength>& text) {
    return {text.data(), text.size()};
}

}  // namespace

IoModule::IoModule(platform::EventLoop& loop, ReplyTiming timing) : LineInstrument(loop, {0, kModel, 1}, timing) {}

void IoModule::set_pot(int number, int position) {
    pots_[static_cast<std::size_t>(number)] = std::clamp(position, 0, kHighestPotentiometer);
}

void IoModule::set_noise(int counts) {
    noise_ = std::clamp(counts, 0, kHighestNoise);
}

bool IoModule::test_switch_closed() const {
    return test_switch_ > 0 && switches_.settled(test_switch_ - 1, now());
}

// With master bits a LED needs one of its masters; the test of the LEDs and the test switch do not ask for them.
bool IoModule::led_lights(int number) const {
    const auto at = static_cast<std::size_t>(number);
    if (power_ == kPowerOff) {
        return false;
    }
    if (test_switch_closed()) {
        return true;
    }
    const auto bits = static_cast<unsigned>(masters_[at]);
    const bool master = bits == 0 || power_ == kPowerLedTest || ((bits & kMaster1) != 0 && masters_on_[0]) ||
                        ((bits & kMaster2) != 0 && masters_on_[1]);
    return wishes_[at] && master;
}

void IoModule::hear(std::string_view bytes) {
    for (const char byte : bytes) {
        switch (reader_.take(static_cast<std::uint8_t>(byte))) {
            case BusFrameReader::Found::command:
                count_frame();
                if (reader_.id() == kCommandDevice) {
                    take_command(reader_.command());
                }
                break;
            case BusFrameReader::Found::identify:
                count_frame();
                if (reader_.id() == kCommandDevice) {
                    reply(telegram());
                }
                break;
            case BusFrameReader::Found::change_id:
                count_frame();
                break;
            case BusFrameReader::Found::broken:
            case BusFrameReader::Found::bad_frame:
                count_bad_frame();
                break;
            case BusFrameReader::Found::stray_byte:
                count_stray_byte();
                break;
            case BusFrameReader::Found::nothing:
                break;
        }
    }
}

void IoModule::take_command(const Command& command) {
    if (command.value < 0 && command.number != kCommandStatus) {
        return;  // a sign that means nothing to any of them: the frame was hurt on the line
    }
    const int low = command.value & 255;
    const int high = command.value >> 8;
    switch (command.number) {
        case kCommandStatus:
            reply(telegram());
            break;
        case kCommandPower:
            power_ = command.value == kPowerOn || command.value == kPowerLedTest ? command.value : kPowerOff;
            break;
        case kCommandTestSwitch:
            test_switch_ = command.value >= 0 && command.value <= kSwitches ? command.value : 0;
            break;
        case kCommandLed:
            take_led(command.value);
            break;
        case kCommandMasters:
            if (low < kLeds) {
                set_masters(low, high);
            }
            break;
        case kCommandType:
            if (low >= 1 && low <= kSwitches) {
                set_type(low - 1, high);
            }
            break;
        case kCommandDebounce:
            if (low <= kLongestDebounceMs && low == high) {
                switches_.set_debounce(low, now());
            }
            break;
        default:
            ++unknown_commands_;
            break;
    }
}

void IoModule::take_led(int value) {
    const int led = value >> 8;
    if (led >= kLeds) {
        return;
    }
    ++led_commands_;
    wishes_[static_cast<std::size_t>(led)] = (value & 255) != 0;
}

// Evenly spread, the same series in every run.
int IoModule::input_value(std::size_t number) {
    if (noise_ == 0) {
        return pots_[number];
    }
    noise_state_ ^= noise_state_ << 13;
    noise_state_ ^= noise_state_ >> 17;
    noise_state_ ^= noise_state_ << 5;
    const int wavering = static_cast<int>(noise_state_ % static_cast<std::uint32_t>(2 * noise_ + 1)) - noise_;
    return std::clamp(pots_[number] + wavering, 0, kHighestPotentiometer);
}

std::string IoModule::telegram() {
    std::string bytes(kTelegramLength, '\0');
    const auto put = [&bytes](int number, int value) {
        char& byte = bytes[static_cast<std::size_t>(number - 1)];
        byte = static_cast<char>(static_cast<unsigned char>(byte) | value);
    };
    put(kDeviceByte, kCommandDevice);
    put(kTypeByte, kOwnType);
    put(kModelByte, identity().model);
    put(kVersionByte, identity().version);
    switches_.next_telegram(now());
    for (int number = 0; number < kSwitches; ++number) {
        if (switches_.reported(number) && number != test_switch_ - 1) {
            put(kFirstSwitchByte + number / kGroupSize, 128 >> number % kGroupSize);
        }
    }
    for (int number = 0; number < kAnalogueInputs; ++number) {
        const int value = input_value(static_cast<std::size_t>(number));
        put(kFirstAnalogueByte + number / 2, value >> 8 << (number % 2 == 0 ? 4 : 0));
        put(kFirstAnalogueLowByte + number, value & 255);
    }
    put(static_cast<int>(kTelegramLength), kTelegramEnd);
    return bytes;
}

void IoModule::power_on() {
    reader_ = BusFrameReader();
    switches_.power_on(now());
    wishes_.fill(false);
    power_ = kPowerOff;
}

void IoModule::show(StateSink& sink) const {
    static constexpr std::array<std::string_view, kAnalogueInputs> kPotNames = {"pot0", "pot1", "pot2", "pot3",
                                                                                "pot4", "pot5", "pot6", "pot7"};
    std::array<char, kSwitches> contacts{};
    std::array<char, kSwitches> reported{};
    std::array<char, kSwitches> types{};
    for (std::size_t number = 0; number < contacts.size(); ++number) {
        contacts[number] = switches_.contact(static_cast<int>(number)) ? '1' : '0';
        reported[number] = switches_.reported(static_cast<int>(number)) ? '1' : '0';
        types[number] = static_cast<char>('0' + switches_.type(static_cast<int>(number)));
    }
    std::array<char, kLeds> leds{};
    std::array<char, kLeds> masters{};
    bool lit = false;
    for (std::size_t number = 0; number < leds.size(); ++number) {
        const bool lights = led_lights(static_cast<int>(number));
        lit = lit || lights;
        leds[number] = lights ? '1' : '0';
        masters[number] = static_cast<char>('0' + masters_[number]);
    }
    sink.flag("lit", lit);
    sink.number("level", 15);
    sink.flag("power", power_ != kPowerOff);
    sink.text("contacts", view_of(contacts));
    sink.text("switches", view_of(reported));
    sink.text("types", view_of(types));
    sink.text("leds", view_of(leds));
    sink.text("masters", view_of(masters));
    sink.flag("master1", masters_on_[0]);
    sink.flag("master2", masters_on_[1]);
    for (std::size_t number = 0; number < pots_.size(); ++number) {
        sink.number(kPotNames[number], pots_[number]);
    }
    sink.number("noise", noise_);
    sink.number("debounce", switches_.debounce_ms());
    sink.number("testSwitch", test_switch_);
    sink.number("clicks", switches_.waiting_clicks());
}

bool IoModule::operate(std::string_view control, int amount) {
    if (control == "noise") {
        set_noise(amount);
        return true;
    }
    const std::size_t digits = control.find_first_of("0123456789");
    int number = 0;
    if (digits == std::string_view::npos) {
        return false;
    }
    const char* const end = control.data() + control.size();
    const auto result = std::from_chars(control.data() + digits, end, number);
    return result.ec == std::errc() && result.ptr == end && operate_numbered(control.substr(0, digits), number, amount);
}

bool IoModule::operate_numbered(std::string_view control, int number, int amount) {
    if (control == "switch" && number < kSwitches) {
        return set_contact(number, amount != 0);
    }
    if (control == "encoder" && number < kSwitches) {
        return turn_encoder(number, amount);
    }
    if (control == "pot" && number < kAnalogueInputs) {
        set_pot(number, amount);
        return true;
    }
    if (control == "master" && (number == 1 || number == 2)) {
        set_master(number, amount != 0);
        return true;
    }
    return false;
}

}  // namespace bench
