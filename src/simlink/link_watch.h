#pragma once

#include <cstdint>
#include <optional>

#include "platform/event_loop.h"
#include "simlink/ipc_client.h"

namespace simlink {

// Keeps a dead simulator from standing in everyone's way. IpcProcess blocks the thread through all its retries, a
// second when the server's window has gone and many when it hangs; at 50 cycles a second nothing else would run.
//
// So, from an IpcProcess that fails through all retries on, the link counts as lost: cycles are skipped, and once a
// second the link is probed: is there a window, and does it answer one short send? Every twentieth send is given the
// full time-out, so that a server that is slow but well is found too. An answer ends it. A link that answers is never
// touched by any of this.
class LinkWatch {
  public:
    LinkWatch(IpcClient& client, platform::EventLoop& loop);

    // Whether a cycle may run. On a lost link: drops the pending requests, which nobody would answer, and probes when
    // it is time to; true when the simulator is back. True on a closed link, where all requests fail at once.
    bool ready();
    // IpcProcess, watched; its result goes to the shared IpcResult. Call only when ready().
    bool process();

    // Whether the last exchange was answered and the link is open.
    bool alive() const { return alive_ && client_.is_open(); }
    // Whether the link has been lost and not found again.
    bool lost() const { return lost_; }
    // The time of the last good answer, if there was one.
    std::optional<platform::TimePoint> last_answer() const { return last_answer_; }
    // Forgets a loss: the link has been opened anew or closed.
    void reset();

  private:
    IpcClient& client_;
    platform::EventLoop& loop_;
    bool alive_ = false;
    bool lost_ = false;
    platform::TimePoint next_probe_{};
    int unanswered_probes_ = 0;
    std::optional<platform::TimePoint> last_answer_;
};

}  // namespace simlink
