#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "bench/device_set.h"
#include "bench/json_writer.h"

namespace bench {

// What the pages of the virtual cockpit are told: first everything, then what has changed. All pages get the same
// changes; one that joins gets everything first.
class CockpitView {
  public:
    // `plugged` tells whether the cable of a line is in.
    CockpitView(const DeviceSet& devices, std::function<bool(int port)> plugged)
        : devices_(devices), plugged_(std::move(plugged)) {}

    // The message that a fresh page begins with: lines, instruments, and all values.
    const std::string& everything();
    // The message with what has changed since the last call; empty when nothing has.
    const std::string& changes();

  private:
    struct Value {
        double number = 0;
        std::string text;
    };
    using Values = std::vector<Value>;
    using Told = std::map<const void*, Values>;  // by device and by line

    // Compares the values that come with the ones last told and writes those that differ.
    class DeltaSink;

    struct Place;
    // Calls `visit` with the place of every instrument and the instrument itself, a Device or a LineInstrument.
    template <typename Visit>
    void for_each_instrument(Visit&& visit) const;

    void write_layout();
    void write_instrument(const Place& place, const Identity& identity, const FacePrint& print);
    void write_labels(std::string_view name, const std::vector<std::string>& labels);
    // Write what differs from what was told and remember it; false when there was nothing to write.
    bool write_values(Told& told);
    bool write_line_values(Told& told);
    bool write_device_values(Told& told);

    const DeviceSet& devices_;
    std::function<bool(int port)> plugged_;
    JsonWriter writer_;
    std::string nothing_;
    Told told_;
    std::uint64_t told_layout_ = ~std::uint64_t{0};
};

}  // namespace bench
