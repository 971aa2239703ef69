#pragma once

#include <utility>

#include "support/failure.h"

namespace support {

// Thrown when the user does not want to go on after a failed step; the steps unwind to the place that started them.
struct StepsAbandoned {};

// Runs a sequence of small steps. When a step fails, `ask` (callable with const Failure&, true = go on) decides: going
// on skips the rest of that step alone, anything else throws StepsAbandoned. Allocates nothing while all goes well.
template <typename Ask>
class Steps {
  public:
    explicit Steps(Ask ask) : ask_(std::move(ask)) {}

    template <typename Step>
    void attempt(Step&& step) {
        try {
            std::forward<Step>(step)();
        } catch (const Failure& failure) {
            if (!ask_(failure)) {
                throw StepsAbandoned{};
            }
        }
    }

  private:
    Ask ask_;
};

}  // namespace support
