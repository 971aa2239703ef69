#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace platform {

using TimePoint = std::chrono::steady_clock::time_point;
using Duration = std::chrono::steady_clock::duration;
using Milliseconds = std::chrono::milliseconds;
using Task = std::function<void()>;

// Thrown out of every wait when the loop has been told to stop, so that a handler that waits unwinds to the loop.
struct LoopStopped {};

class EventLoop;

// A periodic timer of the loop. Starting it or changing its interval begins a new period. A handler that comes late
// makes the periods missed meanwhile collapse into one, and a handler is never entered again while it runs (waits
// inside it included). It must not outlive its loop.
class Timer {
  public:
    // The timer is off at first. `interval` is at least 1 ms; shorter ones count as 1 ms. `name` shows in statistics.
    Timer(EventLoop& loop, std::string name, Milliseconds interval, Task handler);
    ~Timer();
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    void start();
    void stop();
    bool enabled() const { return enabled_; }
    void set_interval(Milliseconds interval);
    Milliseconds interval() const { return interval_; }

    const std::string& name() const { return name_; }
    // The longest time that the handler has taken, waits inside it included.
    Duration longest_run() const { return longest_run_; }
    // The longest time from the due time to the entry of the handler.
    Duration longest_delay() const { return longest_delay_; }
    // The same of the latest call.
    Duration last_delay() const { return last_delay_; }
    // The number of periods that passed without a call of their own.
    std::uint64_t missed_periods() const { return missed_periods_; }

  private:
    friend class EventLoop;

    EventLoop& loop_;
    std::string name_;
    Milliseconds interval_;
    Task handler_;
    bool enabled_ = false;
    bool running_ = false;
    std::uint64_t period_start_count_ = 0;
    TimePoint due_{};
    Duration longest_run_{};
    Duration longest_delay_{};
    Duration last_delay_{};
    std::uint64_t missed_periods_ = 0;
};

// The one queue of the program: timers, receive events and user commands are its tasks, run one after the other in the
// order in which they fell due. A back end gives the time and the way to sleep.
class EventLoop {
  public:
    EventLoop();
    virtual ~EventLoop();
    EventLoop(const EventLoop&) = delete;
    EventLoop& operator=(const EventLoop&) = delete;

    // A steady clock; virtual in the manual back end.
    virtual TimePoint now() const = 0;

    // Queues a task (a receive event, an answer to a box).
    void post(Task task);
    // Queues a task that falls due after `delay`.
    void post_after(Duration delay, Task task);
    // Queues a user command. User commands are held back while a box is open.
    void post_user_command(Task task);

    // Runs what is due and sleeps in between until `done()` is true. Throws LoopStopped when the loop is stopped.
    void yield_until(const std::function<bool()>& done);
    // The same with user commands held back (the wait of a box).
    void yield_until_modal(const std::function<bool()>& done);
    // Runs what is due now, without sleeping.
    void yield_once();

    // Runs until stop().
    void run();
    // Ends run() and every wait.
    void stop();
    bool stopped() const { return stopped_; }

    // Told of a failure that no handler has dealt with; the loop goes on. The default writes to standard error.
    std::function<void(const std::string& description)> on_unhandled_failure;

    const std::vector<Timer*>& timers() const { return timers_; }

  protected:
    // Runs the one task that has been due longest. False when nothing is due.
    bool run_one_due();
    // When the next task falls due, if any is waiting.
    std::optional<TimePoint> next_due() const;
    // Sleeps until `until` or an outside event, whichever is first; without `until`, until an outside event.
    virtual void wait(std::optional<TimePoint> until) = 0;
    // Lets outside events queue their tasks, without sleeping.
    virtual void collect_events() {}

  private:
    friend class Timer;

    struct QueuedTask {
        TimePoint due;
        std::uint64_t number;
        Task task;
    };
    struct QueuedCommand {
        TimePoint queued;
        Task task;
    };

    static bool later(const QueuedTask& a, const QueuedTask& b);
    Timer* earliest_timer() const;
    void run_timer(Timer& timer);
    void run_guarded(const Task& task);
    void forget(Timer& timer);

    std::vector<Timer*> timers_;
    std::vector<QueuedTask> tasks_;  // a heap, earliest on top
    std::deque<QueuedCommand> commands_;
    std::uint64_t task_count_ = 0;
    int modal_depth_ = 0;
    bool stopped_ = false;
};

}  // namespace platform
