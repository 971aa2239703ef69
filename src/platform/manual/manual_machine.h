#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/file_store.h"
#include "platform/key_delivery.h"
#include "platform/random.h"
#include "platform/wall_clock.h"

namespace platform::manual {

// Files in memory.
class ManualFiles : public FileStore {
  public:
    std::map<std::string, std::string> contents;
    std::set<std::string> write_protected;
    bool disk_full = false;  // every replacement fails

    std::string read(const std::string& name) const override;
    void replace(const std::string& name, std::string_view bytes) override;
    void remove(const std::string& name) override;
    bool exists(const std::string& name) const override { return contents.count(name) != 0; }
    std::vector<std::string> list(std::string_view ending) const override;
};

class ManualWallClock : public WallClock {
  public:
    DateTime time{2024, 5, 17, 14, 30, 12};
    DateTime local_now() const override { return time; }
};

// A fixed series (xorshift); the seed is not 0.
class ManualRandom : public Random {
  public:
    explicit ManualRandom(std::uint32_t seed = 2463534242U) : state_(seed) {}
    std::uint32_t next() override {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 17;
        state_ ^= state_ << 5;
        return state_;
    }

  private:
    std::uint32_t state_;
};

class ManualKeys : public KeyDelivery {
  public:
    std::vector<std::string> sent;
    std::string failure;  // while it is not empty every keystroke fails with these words
    void send(const std::string& keys) override;
};

}  // namespace platform::manual
