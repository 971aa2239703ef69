#pragma once

#include <array>
#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

#include "simhost/simulator.h"

// One value over a flight, as clients saw it.
struct ValueTrace {
    double least = 1e300;
    double most = -1e300;
    double largest_step = 0;  // between two looks
    double at_s = 0;          // when that was
    double previous = 0;
    bool seen = false;
    bool finite = true;
};

// A circuit flown once and looked at every 20 ms through the offset space.
class RecordedFlight {
  public:
    static constexpr std::chrono::milliseconds kLook{20};

    explicit RecordedFlight(int circuits) {
        while (simulator.model().script().finished_circuits() < circuits &&
               simulator.model().time_s() < 900.0 * circuits) {
            simulator.step(kLook);
            look();
        }
    }

    // The trace of a value over the whole flight.
    const ValueTrace& trace(const std::string& name) const { return traces_.at(index_of(name)); }
    // The same over one phase alone.
    const ValueTrace& trace(const std::string& name, simhost::Phase phase) const {
        return phase_traces_.at(static_cast<std::size_t>(phase)).at(index_of(name));
    }

    simhost::Simulator simulator;
    std::vector<simhost::Phase> phases;  // in the order in which they came
    std::vector<simhost::RunwayPlace> touchdowns;

  private:
    std::size_t index_of(const std::string& name) const {
        for (std::size_t i = 0; i < simulator.map().rows().size(); ++i) {
            if (simulator.map().rows()[i].name == name) {
                return i;
            }
        }
        throw std::out_of_range("no value " + name);
    }

    static bool is_bearing(const simhost::OffsetRow& row) {
        return row.unit == "deg" && (row.name.find("bearing") != std::string_view::npos ||
                                     row.name.find("heading") != std::string_view::npos ||
                                     row.name.find("radial") != std::string_view::npos || row.name == "compass");
    }

    void look() {
        const simhost::Phase phase = simulator.model().script().phase();
        if (phases.empty() || phases.back() != phase) {
            phases.push_back(phase);
        }
        const bool on_ground = simulator.aircraft().airframe.on_ground();
        if (on_ground && !was_on_ground_ && phase >= simhost::Phase::landing) {
            touchdowns.push_back(simulator.aircraft().airframe.runway_place());
        }
        was_on_ground_ = on_ground;
        const std::vector<simhost::OffsetRow>& rows = simulator.map().rows();
        traces_.resize(rows.size());
        std::vector<ValueTrace>& in_phase = phase_traces_[static_cast<std::size_t>(phase)];
        in_phase.resize(rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const double value = simhost::OffsetMap::read(rows[i], simulator.space());
            follow(traces_[i], value, rows[i]);
            follow(in_phase[i], value, rows[i]);
        }
    }

    void follow(ValueTrace& trace, double value, const simhost::OffsetRow& row) {
        trace.finite = trace.finite && std::isfinite(value);
        trace.least = std::min(trace.least, value);
        trace.most = std::max(trace.most, value);
        if (trace.seen) {
            double step = std::abs(value - trace.previous);
            if (is_bearing(row)) {
                step = std::min(step, std::abs(360.0 - step));
            }
            if (step > trace.largest_step) {
                trace.largest_step = step;
                trace.at_s = simulator.model().time_s();
            }
        }
        trace.previous = value;
        trace.seen = true;
    }

    std::vector<ValueTrace> traces_;  // by row of the map
    std::array<std::vector<ValueTrace>, simhost::kPhases> phase_traces_;
    bool was_on_ground_ = true;
};
