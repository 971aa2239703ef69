#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

#include "simhost/block_server.h"
#include "simhost/flight_model.h"
#include "simhost/offset_map.h"
#include "simhost/offset_space.h"

namespace simhost {

// The whole stand-in simulator without its transport: the flight model, its values in the offset space, and the server
// that answers request blocks out of it.
class Simulator {
  public:
    explicit Simulator(std::uint64_t seed = FlightModel::kDefaultSeed);
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    // Moves the flight on and shows the new values.
    void step(FlightModel::Duration elapsed);
    // Answers a request block in place; gives the reply value.
    std::uint32_t answer(std::uint8_t* block, std::size_t size) { return server_.answer(block, size).value; }

    // Starts from cold and dark again, with an empty offset space.
    void restart();
    void jump_to(Phase phase);

    FlightModel& model() { return model_; }
    const FlightModel& model() const { return model_; }
    Aircraft& aircraft() { return model_.aircraft(); }
    const Aircraft& aircraft() const { return model_.aircraft(); }
    BlockServer& server() { return server_; }
    const BlockServer& server() const { return server_; }
    OffsetSpace& space() { return space_; }
    const OffsetMap& map() const { return map_; }

    // A value by its name in the offset map, as clients see it. Throws a Failure for an unknown name.
    double value(std::string_view name) const;
    // Sets a value the way a client does. Throws a Failure for an unknown name or a value that nobody can set.
    void set_value(std::string_view name, double value);

  private:
    const OffsetRow& row(std::string_view name) const;

    FlightModel model_;
    OffsetSpace space_;
    OffsetMap map_;
    BlockServer server_;
};

}  // namespace simhost
