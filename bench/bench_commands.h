#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "bench/device_set.h"

namespace bench {

inline constexpr std::size_t kLongestCommand = 200;

// What commands do outside the devices. A Failure becomes the answer to the command.
struct BenchActions {
    std::function<void(int port)> unplug;
    std::function<void(int port)> plug;
    std::function<void()> quit;
};

// Carries out the bench's text commands, one line each, from the terminal or from the page: faults, knobs, plugs.
class BenchCommands {
  public:
    BenchCommands(const DeviceSet& devices, BenchActions actions) : devices_(devices), actions_(std::move(actions)) {}

    // Returns what to tell the user: "ok", or what is wrong with the command. Throws nothing for any text.
    std::string carry_out(std::string_view line);

    static std::string help();

  private:
    using Words = std::vector<std::string_view>;
    struct Row {
        std::string_view name;
        std::size_t most_words;
        std::size_t least_words;
        std::string_view usage;
        std::string (BenchCommands::*handler)(const Words& words);
    };
    static std::span<const Row> rows();
    std::string attempt(const Row& row, const Words& words);
    // What "17" (a bus id), "1.17" (port and bus id) or "5.0" (the unit of a line) means; both null for nobody.
    struct Target {
        BusController* bus = nullptr;
        int id = 0;
        LineInstrument* instrument = nullptr;
    };
    Target target_of(std::string_view word) const;

    std::string unplug(const Words& words);
    std::string plug(const Words& words);
    std::string power(const Words& words);
    std::string noise(const Words& words);
    std::string fault(const Words& words);
    std::string knock(const Words& words);
    std::string turn(const Words& words);
    std::string show_help(const Words& words);
    std::string quit(const Words& words);

    const DeviceSet& devices_;
    BenchActions actions_;
};

}  // namespace bench
