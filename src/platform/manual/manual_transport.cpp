#include "platform/manual/manual_transport.h"

#include <algorithm>

namespace platform::manual {

namespace {

constexpr std::uint32_t kMessage = 0xC123;
constexpr std::uint16_t kAtom = 0xC001;
constexpr MappingHandle kMapping = 7;

}  // namespace

WindowHandle ManualTransport::FindWindowExA(const std::string& window_class) {
    if (std::find(windows.begin(), windows.end(), window_class) == windows.end()) {
        return 0;
    }
    const auto known = std::find(known_classes_.begin(), known_classes_.end(), window_class);
    if (known == known_classes_.end()) {
        known_classes_.push_back(window_class);
        return static_cast<WindowHandle>(known_classes_.size());
    }
    return static_cast<WindowHandle>(known - known_classes_.begin() + 1);
}

bool ManualTransport::window_there(WindowHandle window) const {
    if (window < 1 || window > static_cast<WindowHandle>(known_classes_.size())) {
        return false;
    }
    const std::string& window_class = known_classes_[static_cast<std::size_t>(window - 1)];
    return std::find(windows.begin(), windows.end(), window_class) != windows.end();
}

std::uint32_t ManualTransport::RegisterWindowMessageA(const std::string&) {
    return faults.register_fails ? 0 : kMessage;
}

std::uint16_t ManualTransport::GlobalAddAtomA(const std::string& name) {
    if (faults.atom_fails) {
        return 0;
    }
    last_name = name;
    ++held_atoms;
    return kAtom;
}

void ManualTransport::GlobalDeleteAtom(std::uint16_t) {
    --held_atoms;
}

MappingHandle ManualTransport::CreateFileMappingA(std::uint32_t, const std::string& name) {
    last_error_ = faults.mapping_exists ? kErrorAlreadyExists : 0;
    if (faults.mapping_fails) {
        return 0;
    }
    last_name = name;
    ++held_mappings;
    return kMapping;
}

std::uint8_t* ManualTransport::MapViewOfFile(MappingHandle) {
    if (faults.view_fails) {
        return nullptr;
    }
    ++held_views;
    block_.fill(0);
    return block_.data();
}

void ManualTransport::UnmapViewOfFile(std::uint8_t*) {
    --held_views;
}

void ManualTransport::CloseHandle(MappingHandle) {
    --held_mappings;
}

bool ManualTransport::SendMessageTimeoutA(WindowHandle window, std::uint32_t, std::int32_t, std::uint32_t timeout_ms,
                                          std::uint32_t& reply) {
    ++sends;
    if (!window_there(window)) {
        last_error_ = kErrorInvalidWindow;
        return false;
    }
    const Duration timeout = Milliseconds(timeout_ms);
    const bool times_out = !server || faults.answer_time >= timeout;
    if (faults.failing_sends != 0 || times_out) {
        faults.failing_sends -= faults.failing_sends > 0 ? 1 : 0;
        last_error_ = times_out ? 0 : faults.send_error;
        if (last_error_ == 0) {
            loop_.pass_time(timeout);
        }
        return false;
    }
    loop_.pass_time(faults.answer_time);
    reply = server(block_.data(), block_.size());
    return true;
}

void ManualTransport::Sleep(std::uint32_t milliseconds) {
    ++sleeps;
    loop_.pass_time(Milliseconds(milliseconds));
}

}  // namespace platform::manual
