#include "simhost/control.h"

#include <array>
#include <charconv>
#include <cmath>
#include <vector>

#include "simhost/units.h"
#include "support/failure.h"
#include "support/number_format.h"

namespace simhost {

namespace {

using Words = std::vector<std::string_view>;

constexpr std::chrono::milliseconds kUsualAway{2000};
constexpr int kLongestMs = 600000;

struct Command {
    std::string_view name;
    std::string_view arguments;
    std::string_view what_it_does;
    std::string (*run)(const Words& words, Simulator& simulator, const Control& control);
};

Words words_of(std::string_view line) {
    Words words;
    std::size_t at = 0;
    while (at < line.size()) {
        const std::size_t start = line.find_first_not_of(" \t\r\n", at);
        if (start == std::string_view::npos) {
            break;
        }
        const std::size_t end = std::min(line.find_first_of(" \t\r\n", start), line.size());
        words.push_back(line.substr(start, end - start));
        at = end;
    }
    return words;
}

std::string_view argument(const Words& words, std::size_t index) {
    if (words.size() <= index) {
        throw support::Failure("\"" + std::string(words.front()) + "\" needs more words; see \"help\"");
    }
    return words[index];
}

double number(std::string_view text) {
    double value = 0;
    const char* const end = text.data() + text.size();
    if (text.starts_with("0x")) {
        std::uint32_t bits = 0;
        const auto read = std::from_chars(text.data() + 2, end, bits, 16);
        if (read.ec == std::errc() && read.ptr == end) {
            return static_cast<double>(bits);
        }
    }
    const auto read = std::from_chars(text.data(), end, value);
    if (read.ec != std::errc() || read.ptr != end || !std::isfinite(value)) {
        throw support::Failure("\"" + std::string(text) + "\" is not a number");
    }
    return value;
}

std::chrono::milliseconds milliseconds(std::string_view text) {
    const double value = number(text);
    if (value < 0 || value > kLongestMs) {
        throw support::Failure("A time of 0 to 600000 milliseconds is possible");
    }
    return std::chrono::milliseconds(static_cast<int>(value));
}

// One of several words; the index of the one that was given.
std::size_t choice(std::string_view text, std::initializer_list<std::string_view> choices) {
    std::string list;
    std::size_t index = 0;
    for (const std::string_view candidate : choices) {
        if (text == candidate) {
            return index;
        }
        list += (index == 0 ? "" : index + 1 == choices.size() ? " or " : ", ") + std::string(candidate);
        ++index;
    }
    throw support::Failure("\"" + std::string(text) + "\" should be " + list);
}

std::string run_silence(const Words& words, Simulator& simulator, const Control&) {
    simulator.server().set_fault(ServerFault::silence, choice(argument(words, 1), {"off", "on"}) == 1);
    return "ok";
}

std::string run_slow(const Words& words, Simulator& simulator, const Control&) {
    const std::chrono::milliseconds delay = milliseconds(argument(words, 1));
    simulator.server().slow_answer_delay = delay;
    simulator.server().set_fault(ServerFault::slow_answers, delay.count() > 0);
    return "ok";
}

std::string run_version(const Words& words, Simulator& simulator, const Control&) {
    const std::size_t chosen = choice(argument(words, 1), {"right", "wrong", "unmarked", "zero"});
    simulator.server().set_fault(ServerFault::wrong_server_version, chosen == 1);
    simulator.server().set_fault(ServerFault::wrong_sim_word, chosen == 2);
    simulator.server().set_fault(ServerFault::zero_versions, chosen == 3);
    return "ok";
}

std::string run_reply(const Words& words, Simulator& simulator, const Control&) {
    simulator.server().set_fault(ServerFault::bad_reply, choice(argument(words, 1), {"good", "bad"}) == 1);
    return "ok";
}

std::string run_ids(const Words& words, Simulator& simulator, const Control&) {
    simulator.server().set_fault(ServerFault::wrong_record_ids, choice(argument(words, 1), {"good", "bad"}) == 1);
    return "ok";
}

std::string run_clear(const Words&, Simulator& simulator, const Control&) {
    simulator.server().clear_faults();
    return "ok";
}

std::string run_restart(const Words& words, Simulator& simulator, const Control& control) {
    const std::chrono::milliseconds away = words.size() > 1 ? milliseconds(words[1]) : kUsualAway;
    simulator.restart();
    if (control.on_restart) {
        control.on_restart(away);
    }
    return "ok";
}

std::string run_window(const Words& words, Simulator&, const Control& control) {
    choice(argument(words, 1), {"UIPCMAIN", "FS98MAIN"});
    if (control.on_window) {
        control.on_window(std::string(words[1]));
    }
    return "ok";
}

std::string run_set(const Words& words, Simulator& simulator, const Control&) {
    simulator.set_value(argument(words, 1), number(argument(words, 2)));
    return "ok";
}

std::string run_get(const Words& words, Simulator& simulator, const Control&) {
    const OffsetRow* const row = simulator.map().find(argument(words, 1));
    const std::string text = support::shortest(simulator.value(words[1]));
    return row->unit.empty() ? text : text + " " + std::string(row->unit);
}

std::string run_names(const Words&, Simulator& simulator, const Control&) {
    std::string list;
    for (const OffsetRow& row : simulator.map().rows()) {
        list += (list.empty() ? "" : "\n") + std::string(row.name) + (row.set == nullptr ? "" : " (can be set)");
    }
    return list;
}

std::string run_jump(const Words& words, Simulator& simulator, const Control&) {
    const std::optional<Phase> phase = phase_named(argument(words, 1));
    if (!phase) {
        std::string list;
        for (const PhaseRow& row : phase_table()) {
            list += " " + std::string(row.name);
        }
        throw support::Failure("The phases are" + list);
    }
    simulator.jump_to(*phase);
    return "ok";
}

std::string run_pause(const Words& words, Simulator& simulator, const Control&) {
    simulator.aircraft().paused = choice(argument(words, 1), {"off", "on"}) == 1;
    return "ok";
}

std::string run_state(const Words&, Simulator& simulator, const Control&) {
    const FlightModel& model = simulator.model();
    std::string text = "phase " + std::string(phase_name(model.script().phase()));
    const auto add = [&](std::string_view name, double value, std::string_view picture) {
        text += "\n" + std::string(name) + " " + support::format_number(value, picture);
    };
    add("time_s", model.time_s(), "0.0");
    add("circuits", model.script().finished_circuits(), "0");
    for (const std::string_view name :
         {"indicated_airspeed", "indicated_altitude", "vertical_speed", "heading", "pitch", "bank", "rpm",
          "main_bus_volts", "avionics_bus_volts", "latitude", "longitude"}) {
        add(name, simulator.value(name), "0.00");
    }
    add("answered_blocks", static_cast<double>(simulator.server().answered_blocks()), "0");
    add("bad_blocks", static_cast<double>(simulator.server().bad_blocks()), "0");
    if (!simulator.aircraft().sent_controls.empty()) {
        add("latest_control", simulator.aircraft().sent_controls.back().number, "0");
        add("latest_control_parameter", simulator.aircraft().sent_controls.back().parameter, "0");
    }
    return text;
}

std::string run_quit(const Words&, Simulator&, const Control& control) {
    if (control.on_quit) {
        control.on_quit();
    }
    return "ok";
}

std::string run_help(const Words& words, Simulator& simulator, const Control& control);

constexpr std::array<Command, 16> kCommands{{
    {"help", "", "lists the commands", run_help},
    {"state", "", "tells phase, speed, altitude and so on", run_state},
    {"get", "NAME", "tells a value", run_get},
    {"set", "NAME VALUE", "sets a value as a client would; 0x.. is hexadecimal", run_set},
    {"names", "", "lists the values", run_names},
    {"jump", "PHASE", "flies on to the next begin of a phase at once", run_jump},
    {"pause", "on|off", "halts the flight", run_pause},
    {"silence", "on|off", "does not answer clients at all", run_silence},
    {"slow", "MS", "answers so many milliseconds late, 0 = at once", run_slow},
    {"version", "right|wrong|unmarked|zero", "gives bad version words", run_version},
    {"reply", "good|bad", "gives a bad reply value", run_reply},
    {"ids", "good|bad", "destroys the ids of the answered records", run_ids},
    {"clear", "", "ends all faults", run_clear},
    {"restart", "[MS]", "starts again; the server is away for so long, 2000 by default", run_restart},
    {"window", "UIPCMAIN|FS98MAIN", "answers as a simulator on this machine, or as one across a network", run_window},
    {"quit", "", "ends the simulator", run_quit},
}};

std::string run_help(const Words&, Simulator&, const Control&) {
    std::string text;
    for (const Command& command : kCommands) {
        text += (text.empty() ? "" : "\n") + std::string(command.name);
        text += (command.arguments.empty() ? "" : " ") + std::string(command.arguments);
        text += ": " + std::string(command.what_it_does);
    }
    return text;
}

}  // namespace

std::string Control::execute(std::string_view line) {
    const Words words = words_of(line);
    if (words.empty()) {
        return "";
    }
    for (const Command& command : kCommands) {
        if (command.name == words.front()) {
            try {
                return command.run(words, simulator_, *this);
            } catch (const support::Failure& failure) {
                return "error: " + failure.description();
            }
        }
    }
    return "error: there is no command \"" + std::string(words.front()) + "\"; see \"help\"";
}

}  // namespace simhost
