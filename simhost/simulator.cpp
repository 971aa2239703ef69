#include "simhost/simulator.h"

#include "support/failure.h"

namespace simhost {

Simulator::Simulator(std::uint64_t seed) : model_(seed), server_(space_) {
    server_.on_write = [this](std::uint32_t offset, std::uint32_t size) {
        map_.take(offset, size, space_, model_.aircraft());
    };
    OffsetMap::write_constants(space_);
    map_.publish(model_.aircraft(), space_);
}

void Simulator::step(FlightModel::Duration elapsed) {
    model_.step(elapsed);
    map_.publish(model_.aircraft(), space_);
}

void Simulator::restart() {
    model_.restart();
    space_.clear();
    OffsetMap::write_constants(space_);
    map_.publish(model_.aircraft(), space_);
}

void Simulator::jump_to(Phase phase) {
    model_.jump_to(phase);
    map_.publish(model_.aircraft(), space_);
}

const OffsetRow& Simulator::row(std::string_view name) const {
    const OffsetRow* const found = map_.find(name);
    if (found == nullptr) {
        throw support::Failure("There is no value \"" + std::string(name) + "\"");
    }
    return *found;
}

double Simulator::value(std::string_view name) const {
    return OffsetMap::read(row(name), space_);
}

void Simulator::set_value(std::string_view name, double value) {
    const OffsetRow& target = row(name);
    if (target.set == nullptr) {
        throw support::Failure("The value \"" + std::string(name) + "\" can only be read");
    }
    // By way of the offset space, so that the value is rounded and limited as a client's would be.
    OffsetMap::write(target, value, space_);
    target.set(model_.aircraft(), OffsetMap::read(target, space_));
}

}  // namespace simhost
