#pragma once

#include <map>
#include <string>

#include "bench/devices/device.h"
#include "platform/manual/manual_loop.h"
#include "support/number_format.h"

namespace bench {

// What a device shows, by name, as texts: flags read "true" or "false".
template <typename Instrument>
std::map<std::string, std::string> shown(const Instrument& device) {
    struct Collector : StateSink {
        std::map<std::string, std::string> values;
        void number(std::string_view name, double value) override {
            values[std::string(name)] = support::shortest(value);
        }
        void text(std::string_view name, std::string_view value) override { values[std::string(name)] = value; }
        void flag(std::string_view name, bool value) override { values[std::string(name)] = value ? "true" : "false"; }
    };
    Collector collector;
    device.show(collector);
    return collector.values;
}

}  // namespace bench
