#include "bench/devices/tuner.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace bench {

namespace {

constexpr int kHighestNumber = 65535;
constexpr int kMostClicksAtOnce = 1000;
constexpr int kKhzPerMhz = 1000;
constexpr int kLeftOutMhz = 100;

struct BandDefaults {
    int minimum;
    int maximum;
    int frequency;
    int coarse_step;
    int fine_step;
};
// In the order of Band.
constexpr std::array<BandDefaults, 4> kDefaults = {{
    {18000, 38975, 21000, 1000, 25},
    {8000, 17950, 13000, 1000, 50},
    {1000, 9999, 5000, 100, 5},
    {1000, 17000, 8500, 100, 5},
}};

struct StartFrequencies {
    int active;
    int standby;
};
constexpr std::array<StartFrequencies, 2> kComStart = {{{18350, 21500}, {24800, 22900}}};
constexpr std::array<StartFrequencies, 2> kNavStart = {{{11100, 12450}, {15800, 12450}}};
constexpr std::array<StartFrequencies, 2> kAdfStart = {{{3520, 4180}, {4180, 3520}}};

bool is_frequency(int number) {
    return number >= 0 && number <= kHighestNumber;
}

const BandDefaults& defaults_of(Band band) {
    return kDefaults[static_cast<std::size_t>(band)];
}

}  // namespace

int Tuner::Knob::steps_of(int more_clicks) {
    clicks += std::clamp(more_clicks, -kMostClicksAtOnce, kMostClicksAtOnce);
    const int steps = clicks / clicks_per_step;
    clicks -= steps * clicks_per_step;
    return steps;
}

Tuner::Tuner(Band band) : band_(band == Band::com ? Band::nav : Band::com) {
    choose_band(band);
}

std::string Tuner::text(int frequency) const {
    std::array<char, 16> buffer{};
    if (is_adf()) {
        std::snprintf(buffer.data(), buffer.size(), "%d.%d", frequency / 10, frequency % 10);
    } else {
        std::snprintf(buffer.data(), buffer.size(), "%d.%03d", kLeftOutMhz + frequency / kKhzPerMhz,
                      frequency % kKhzPerMhz);
    }
    return buffer.data();
}

void Tuner::turn_coarse(int clicks) {
    const int steps = coarse_.steps_of(clicks);
    for (int step = 0; step < std::abs(steps); ++step) {
        standby_ = step_and_wrap(standby_, steps > 0 ? coarse_.step : -coarse_.step);
    }
}

void Tuner::turn_fine(int clicks) {
    const int steps = fine_.steps_of(clicks);
    for (int step = 0; step < std::abs(steps); ++step) {
        standby_ = step_within_coarse(standby_, steps > 0 ? 1 : -1);
    }
}

void Tuner::swap() {
    std::swap(active_, standby_);
}

void Tuner::choose_band(Band band) {
    if (band == band_) {
        return;
    }
    band_ = band;
    const BandDefaults& defaults = defaults_of(band);
    minimum_ = defaults.minimum;
    maximum_ = defaults.maximum;
    coarse_ = Knob{.step = defaults.coarse_step};
    fine_ = Knob{.step = defaults.fine_step};
    set_start(defaults.frequency, defaults.frequency);
}

bool Tuner::set_minimum(int frequency) {
    if (!is_frequency(frequency)) {
        return false;
    }
    minimum_ = frequency;
    apply_limits();
    return true;
}

bool Tuner::set_maximum(int frequency) {
    if (!is_frequency(frequency)) {
        return false;
    }
    maximum_ = frequency;
    apply_limits();
    return true;
}

bool Tuner::set_default(int frequency) {
    if (!is_frequency(frequency)) {
        return false;
    }
    start_active_ = frequency;
    return true;
}

void Tuner::set_start(int active, int standby) {
    start_active_ = active;
    start_standby_ = standby;
    power_on();
}

void Tuner::set_steps(int coarse, int fine) {
    coarse_.step = std::max(coarse, 1);
    fine_.step = std::max(fine, 1);
}

void Tuner::set_clicks_per_step(int coarse, int fine) {
    coarse_.clicks_per_step = std::max(coarse, 1);
    fine_.clicks_per_step = std::max(fine, 1);
    coarse_.clicks = fine_.clicks = 0;
}

void Tuner::power_on() {
    active_ = start_active_;
    standby_ = start_standby_;
    coarse_.clicks = fine_.clicks = 0;
    apply_limits();
}

bool Tuner::within_limits(int frequency) const {
    return minimum_ > maximum_ ? is_frequency(frequency) : frequency >= minimum_ && frequency <= maximum_;
}

int Tuner::limited(int frequency) const {
    return minimum_ > maximum_ ? frequency : std::clamp(frequency, minimum_, maximum_);
}

int Tuner::step_and_wrap(int frequency, int step) const {
    const int next = frequency + step;
    if (within_limits(next)) {
        return next;
    }
    // On from the other limit: back by as many whole steps as fit.
    int other_end = frequency;
    while (within_limits(other_end - step)) {
        other_end -= step;
    }
    return other_end;
}

int Tuner::step_within_coarse(int frequency, int direction) const {
    if (fine_.step >= coarse_.step) {
        return step_and_wrap(frequency, direction * fine_.step);
    }
    const int places = (coarse_.step + fine_.step - 1) / fine_.step;
    const int block = frequency / coarse_.step * coarse_.step;
    int place = (frequency - block) / fine_.step;
    for (int tried = 0; tried < places; ++tried) {
        place = (place + direction + places) % places;
        const int next = block + place * fine_.step;
        if (within_limits(next)) {
            return next;
        }
    }
    return frequency;
}

void Tuner::apply_limits() {
    active_ = limited(active_);
    standby_ = limited(standby_);
}

void tune_as_delivered(Tuner& tuner, int number) {
    const auto& frequencies = tuner.is_adf() ? kAdfStart : tuner.band() == Band::nav ? kNavStart : kComStart;
    const StartFrequencies& start = frequencies[number == 2 ? 1 : 0];
    tuner.set_start(start.active, start.standby);
}

}  // namespace bench
