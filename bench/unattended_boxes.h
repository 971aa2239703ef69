#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/boxes.h"

namespace bench {

// Nobody sits at the bench: messages go to the log, questions are answered with yes.
class UnattendedBoxes : public platform::Boxes {
  public:
    explicit UnattendedBoxes(std::function<void(const std::string&)> log) : log_(std::move(log)) {}

    void message(const std::string& text) override { log_(text); }
    platform::Answer question(const std::string& text, const std::function<bool()>&) override {
        log_(text + " (taken as yes)");
        return platform::Answer::yes;
    }
    std::optional<std::string> input(const std::string& text, const std::string&) override {
        log_(text);
        return std::nullopt;
    }

  private:
    std::function<void(const std::string&)> log_;
};

}  // namespace bench
