#include "simlink/link_watch.h"

namespace simlink {

namespace {

constexpr platform::Milliseconds kProbeInterval{1000};
constexpr std::uint32_t kProbeTimeoutMs = 100;
constexpr int kPatientProbe = 20;

}  // namespace

LinkWatch::LinkWatch(IpcClient& client, platform::EventLoop& loop) : client_(client), loop_(loop) {}

bool LinkWatch::ready() {
    if (!lost_ || !client_.is_open()) {
        return true;
    }
    if (loop_.now() < next_probe_) {
        client_.drop_pending();
        return false;
    }
    const bool patient = unanswered_probes_ == kPatientProbe - 1;
    const ProbeOutcome outcome = client_.probe(patient ? kSendTimeoutMs : kProbeTimeoutMs);
    if (outcome == ProbeOutcome::answered) {
        lost_ = false;
        return true;
    }
    unanswered_probes_ = outcome == ProbeOutcome::no_window || patient ? 0 : unanswered_probes_ + 1;
    next_probe_ = loop_.now() + kProbeInterval;
    return false;
}

bool LinkWatch::process() {
    const bool answered = client_.IpcProcess(client_.IpcResult);
    if (answered) {
        alive_ = true;
        last_answer_ = loop_.now();
        return true;
    }
    if (client_.IpcResult == kIpcNoRequests) {
        return false;  // nothing was sent, nothing learnt
    }
    alive_ = false;
    if (client_.IpcResult == kIpcTimedOut || client_.IpcResult == kIpcSendFailed) {
        lost_ = true;
        unanswered_probes_ = 0;
        next_probe_ = loop_.now() + kProbeInterval;
    }
    return false;
}

void LinkWatch::reset() {
    alive_ = false;
    lost_ = false;
    unanswered_probes_ = 0;
}

}  // namespace simlink
