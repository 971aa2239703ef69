#include "platform/event_loop.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "support/failure.h"
#include "support/steps.h"

namespace platform {

namespace {

// User commands beyond this many are lost: nobody clicks so often while a box is open.
constexpr std::size_t kMostCommands = 256;

}  // namespace

Timer::Timer(EventLoop& loop, std::string name, Milliseconds interval, Task handler)
    : loop_(loop),
      name_(std::move(name)),
      interval_(std::max(interval, Milliseconds(1))),
      handler_(std::move(handler)) {
    loop_.timers_.push_back(this);
}

Timer::~Timer() {
    loop_.forget(*this);
}

void Timer::start() {
    enabled_ = true;
    ++period_start_count_;
    due_ = loop_.now() + interval_;
}

void Timer::stop() {
    enabled_ = false;
    ++period_start_count_;
}

void Timer::set_interval(Milliseconds interval) {
    interval_ = std::max(interval, Milliseconds(1));
    if (enabled_) {
        start();
    }
}

EventLoop::EventLoop() {
    on_unhandled_failure = [](const std::string& description) {
        std::fprintf(stderr, "cockpit: %s\n", description.c_str());
    };
}

EventLoop::~EventLoop() = default;

bool EventLoop::later(const QueuedTask& a, const QueuedTask& b) {
    return a.due != b.due ? a.due > b.due : a.number > b.number;
}

void EventLoop::post(Task task) {
    post_after(Duration::zero(), std::move(task));
}

void EventLoop::post_after(Duration delay, Task task) {
    tasks_.push_back({now() + delay, task_count_++, std::move(task)});
    std::push_heap(tasks_.begin(), tasks_.end(), later);
}

void EventLoop::post_user_command(Task task) {
    if (commands_.size() >= kMostCommands) {
        return;
    }
    commands_.push_back({now(), std::move(task)});
}

Timer* EventLoop::earliest_timer() const {
    Timer* earliest = nullptr;
    for (Timer* timer : timers_) {
        if (timer->enabled_ && !timer->running_ && (earliest == nullptr || timer->due_ < earliest->due_)) {
            earliest = timer;
        }
    }
    return earliest;
}

std::optional<TimePoint> EventLoop::next_due() const {
    std::optional<TimePoint> next;
    const auto consider = [&next](TimePoint due) {
        if (!next || due < *next) {
            next = due;
        }
    };
    if (!tasks_.empty()) {
        consider(tasks_.front().due);
    }
    if (modal_depth_ == 0 && !commands_.empty()) {
        consider(commands_.front().queued);
    }
    if (const Timer* timer = earliest_timer()) {
        consider(timer->due_);
    }
    return next;
}

bool EventLoop::run_one_due() {
    const std::optional<TimePoint> next = next_due();
    if (!next || *next > now()) {
        return false;
    }
    if (!tasks_.empty() && tasks_.front().due == *next) {
        std::pop_heap(tasks_.begin(), tasks_.end(), later);
        const Task task = std::move(tasks_.back().task);
        tasks_.pop_back();
        run_guarded(task);
    } else if (modal_depth_ == 0 && !commands_.empty() && commands_.front().queued == *next) {
        const Task task = std::move(commands_.front().task);
        commands_.pop_front();
        run_guarded(task);
    } else {
        run_timer(*earliest_timer());
    }
    return true;
}

void EventLoop::run_timer(Timer& timer) {
    // The handler may destroy its timer (a panel that closes itself does not, but nothing forbids it): after the call
    // the timer is touched only while the loop still knows it.
    struct Guard {
        EventLoop& loop;
        Timer* timer;
        TimePoint entered;
        std::uint64_t period_start_count;

        ~Guard() {
            if (std::find(loop.timers_.begin(), loop.timers_.end(), timer) == loop.timers_.end()) {
                return;
            }
            timer->running_ = false;
            const TimePoint left = loop.now();
            timer->longest_run_ = std::max(timer->longest_run_, left - entered);
            if (timer->period_start_count_ == period_start_count) {
                const auto periods = (left - timer->due_) / timer->interval_;
                timer->missed_periods_ += static_cast<std::uint64_t>(periods);
                timer->due_ += (periods + 1) * timer->interval_;
            }
        }
    };
    const TimePoint entered = now();
    timer.last_delay_ = entered - timer.due_;
    timer.longest_delay_ = std::max(timer.longest_delay_, timer.last_delay_);
    timer.running_ = true;
    const Guard guard{*this, &timer, entered, timer.period_start_count_};
    run_guarded(timer.handler_);
}

void EventLoop::run_guarded(const Task& task) {
    try {
        task();
    } catch (const support::Failure& failure) {
        if (on_unhandled_failure) {
            on_unhandled_failure(failure.description());
        }
    } catch (const support::StepsAbandoned&) {
        // The user has said that he does not want to go on; the handler ends here.
    }
}

void EventLoop::forget(Timer& timer) {
    timers_.erase(std::remove(timers_.begin(), timers_.end(), &timer), timers_.end());
}

void EventLoop::yield_until(const std::function<bool()>& done) {
    while (!done()) {
        if (stopped_) {
            throw LoopStopped{};
        }
        collect_events();
        if (!run_one_due()) {
            wait(next_due());
        }
    }
}

void EventLoop::yield_until_modal(const std::function<bool()>& done) {
    struct Depth {
        int& depth;
        explicit Depth(int& counter) : depth(counter) { ++depth; }
        ~Depth() { --depth; }
    };
    const Depth depth(modal_depth_);
    yield_until(done);
}

void EventLoop::yield_once() {
    const TimePoint until = now();
    collect_events();
    while (!stopped_) {
        const std::optional<TimePoint> next = next_due();
        if (!next || *next > until) {
            return;
        }
        run_one_due();
    }
    throw LoopStopped{};
}

void EventLoop::run() {
    try {
        while (!stopped_) {
            collect_events();
            if (!run_one_due()) {
                wait(next_due());
            }
        }
    } catch (const LoopStopped&) {
        // A handler that waited has been unwound.
    }
}

void EventLoop::stop() {
    stopped_ = true;
}

}  // namespace platform
