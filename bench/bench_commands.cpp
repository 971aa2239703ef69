#include "bench/bench_commands.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "bench/devices/stepper.h"
#include "support/failure.h"

namespace bench {

namespace {

constexpr std::string_view kNoiseBytes = "\x03\x7F\xC1\x10\x99";
constexpr int kMostNoise = 1000;  // times the bytes above

std::vector<std::string_view> split(std::string_view line) {
    std::vector<std::string_view> words;
    std::size_t at = 0;
    while ((at = line.find_first_not_of(" \t\r\n", at)) != std::string_view::npos) {
        const std::size_t end = std::min(line.find_first_of(" \t\r\n", at), line.size());
        words.push_back(line.substr(at, end - at));
        at = end;
    }
    return words;
}

std::optional<int> number_of(std::string_view word) {
    int number = 0;
    const auto result = std::from_chars(word.data(), word.data() + word.size(), number);
    if (result.ec != std::errc() || result.ptr != word.data() + word.size()) {
        return std::nullopt;
    }
    return number;
}

std::string no_such_line(std::string_view word) {
    return "there is no line " + std::string(word);
}

std::string no_such_device(std::string_view word) {
    return "there is no device with the id " + std::string(word);
}

}  // namespace

std::span<const BenchCommands::Row> BenchCommands::rows() {
    static constexpr std::array<Row, 9> kRows = {{
        {"unplug", 2, 2, "unplug PORT              pull the cable of a line", &BenchCommands::unplug},
        {"plug", 2, 2, "plug PORT                put it in again", &BenchCommands::plug},
        {"power", 2, 2, "power PORT               switch all devices of a line off and on", &BenchCommands::power},
        {"noise", 3, 2, "noise PORT [TIMES]       send stray bytes", &BenchCommands::noise},
        {"fault", 4, 3,
         "fault ID NAME [REPLIES]  none, mute, deaf, drop_reply, corrupt_byte, half_report,\n"
         "                         wrong_id, wrong_type, late_reply, noise",
         &BenchCommands::fault},
        {"knock", 4, 4, "knock ID NEEDLE STEPS    push a needle out of its place", &BenchCommands::knock},
        {"turn", 4, 4, "turn ID CONTROL CLICKS   turn a knob or set a switch", &BenchCommands::turn},
        {"help", 1, 1, "help                     this list", &BenchCommands::show_help},
        {"quit", 1, 1, "quit                     end the bench", &BenchCommands::quit},
    }};
    return kRows;
}

std::string BenchCommands::carry_out(std::string_view line) {
    if (line.size() > kLongestCommand) {
        return "the command is too long";
    }
    const Words words = split(line);
    if (words.empty()) {
        return "";
    }
    if (fault_of_name(words[0]) && words.size() >= 2 && words[0] != "noise") {
        // "mute 17" is short for "fault 17 mute".
        Words reordered = words;
        reordered.insert(reordered.begin(), "fault");
        std::swap(reordered[1], reordered[2]);
        return reordered.size() <= 4 ? fault(reordered) : help();
    }
    for (const Row& row : rows()) {
        if (row.name == words[0]) {
            const bool fits = words.size() >= row.least_words && words.size() <= row.most_words;
            return fits ? attempt(row, words) : std::string(row.usage);
        }
    }
    return "no such command\n" + help();
}

BenchCommands::Target BenchCommands::target_of(std::string_view word) const {
    const std::size_t point = word.find('.');
    const int id = number_of(word.substr(point == std::string_view::npos ? 0 : point + 1)).value_or(-1);
    if (point == std::string_view::npos) {
        return {devices_.bus_with(id), id};
    }
    const BenchLine* const line = devices_.line(number_of(word.substr(0, point)).value_or(0));
    if (line == nullptr || id < 0) {
        return {};
    }
    if (line->bus != nullptr && line->bus->device(id) != nullptr) {
        return {line->bus, id};
    }
    return {nullptr, id, id == LineInstrument::kNoId ? line->instrument : nullptr};
}

std::string BenchCommands::attempt(const Row& row, const Words& words) {
    try {
        return (this->*row.handler)(words);
    } catch (const support::Failure& failure) {
        return failure.description();
    }
}

std::string BenchCommands::help() {
    std::string text;
    for (const Row& row : rows()) {
        text += text.empty() ? "" : "\n";
        text += row.usage;
    }
    return text;
}

std::string BenchCommands::unplug(const Words& words) {
    const BenchLine* line = devices_.line(number_of(words[1]).value_or(0));
    if (line == nullptr) {
        return no_such_line(words[1]);
    }
    actions_.unplug(line->port);
    return "ok";
}

std::string BenchCommands::plug(const Words& words) {
    const BenchLine* line = devices_.line(number_of(words[1]).value_or(0));
    if (line == nullptr) {
        return no_such_line(words[1]);
    }
    actions_.plug(line->port);
    return "ok";
}

std::string BenchCommands::power(const Words& words) {
    const BenchLine* line = devices_.line(number_of(words[1]).value_or(0));
    if (line == nullptr) {
        return no_such_line(words[1]);
    }
    line->device->power_cycle();
    return "ok";
}

std::string BenchCommands::noise(const Words& words) {
    const BenchLine* line = devices_.line(number_of(words[1]).value_or(0));
    if (line == nullptr || (line->bus == nullptr && line->instrument == nullptr)) {
        return no_such_line(words[1]);
    }
    const int times = words.size() > 2 ? number_of(words[2]).value_or(0) : 1;
    if (times < 1 || times > kMostNoise) {
        return "times are 1 to " + std::to_string(kMostNoise);
    }
    for (int time = 0; time < times; ++time) {
        if (line->bus != nullptr) {
            line->bus->send_noise(kNoiseBytes);
        } else {
            line->instrument->send_noise(kNoiseBytes);
        }
    }
    return "ok";
}

std::string BenchCommands::fault(const Words& words) {
    const Target target = target_of(words[1]);
    const std::optional<Fault> fault = fault_of_name(words[2]);
    if (target.bus == nullptr && target.instrument == nullptr) {
        return no_such_device(words[1]);
    }
    if (!fault) {
        return "there is no fault " + std::string(words[2]);
    }
    const std::optional<int> replies = words.size() > 3 ? number_of(words[3]) : BusController::kEveryReply;
    if (!replies || (words.size() > 3 && *replies < 1)) {
        return "replies are a number above 0";
    }
    if (target.bus != nullptr) {
        target.bus->set_fault(target.id, *fault, *replies);
    } else {
        target.instrument->set_fault(*fault, *replies);
    }
    return "ok";
}

std::string BenchCommands::knock(const Words& words) {
    const Target target = target_of(words[1]);
    const int needle = number_of(words[2]).value_or(0);
    const std::optional<int> steps = number_of(words[3]);
    if (!steps || *steps < -kStepsPerTurn || *steps > kStepsPerTurn) {
        return "steps are -1080 to 1080";
    }
    const bool knocked = target.bus != nullptr          ? target.bus->device(target.id)->knock(needle, *steps)
                         : target.instrument != nullptr ? target.instrument->knock(needle, *steps)
                                                        : false;
    return knocked ? "ok" : "there is no such needle";
}

std::string BenchCommands::turn(const Words& words) {
    const Target target = target_of(words[1]);
    if (target.bus == nullptr && target.instrument == nullptr) {
        return no_such_device(words[1]);
    }
    const std::optional<int> clicks = number_of(words[3]);
    const bool turned = clicks && (target.bus != nullptr ? target.bus->device(target.id)->operate(words[2], *clicks)
                                                         : target.instrument->operate(words[2], *clicks));
    return turned ? "ok" : "the device has no control " + std::string(words[2]);
}

std::string BenchCommands::show_help(const Words&) {
    return help();
}

std::string BenchCommands::quit(const Words&) {
    actions_.quit();
    return "ok";
}

}  // namespace bench
