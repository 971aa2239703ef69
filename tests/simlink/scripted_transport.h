#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/sim_transport.h"
#include "simlink/ipc_block.h"
#include "support/bytes.h"

// A simulator's outside whose every answer a test sets, and that keeps a record of what the client asked of it.
class ScriptedTransport : public platform::SimTransport {
  public:
    platform::WindowHandle FindWindowExA(const std::string& window_class) override {
        calls.push_back("find " + window_class);
        const auto found = windows.find(window_class);
        return found == windows.end() ? 0 : found->second;
    }
    std::uint32_t RegisterWindowMessageA(const std::string& text) override {
        calls.push_back("register " + text);
        return message;
    }
    std::uint32_t GetCurrentProcessId() override { return process_id; }
    std::uint16_t GlobalAddAtomA(const std::string& name) override {
        calls.push_back("add atom " + name);
        return atom;
    }
    void GlobalDeleteAtom(std::uint16_t deleted) override { calls.push_back("delete atom " + std::to_string(deleted)); }
    platform::MappingHandle CreateFileMappingA(std::uint32_t size_bytes, const std::string& name) override {
        calls.push_back("map " + std::to_string(size_bytes) + " " + name);
        return mapping;
    }
    std::uint32_t GetLastError() override { return last_error; }
    std::uint8_t* MapViewOfFile(platform::MappingHandle) override {
        calls.push_back("view");
        return view_fails ? nullptr : block.data();
    }
    void UnmapViewOfFile(std::uint8_t*) override { calls.push_back("unmap"); }
    void CloseHandle(platform::MappingHandle) override { calls.push_back("close mapping"); }
    bool SendMessageTimeoutA(platform::WindowHandle to, std::uint32_t, std::int32_t with_atom, std::uint32_t timeout_ms,
                             std::uint32_t& reply_value) override {
        ++sends;
        window = to;
        sent_atom = with_atom;
        sent_timeout_ms = timeout_ms;
        if (sends <= failing_sends) {
            return false;
        }
        if (answer) {
            answer(block.data());
        }
        reply_value = reply;
        return true;
    }
    void Sleep(std::uint32_t milliseconds) override { slept_ms += milliseconds; }

    // Fills every read record from `words`, a value for an offset, and lets writes be.
    void answer_reads(const std::map<std::uint32_t, std::uint32_t>& words) {
        answer = [words](std::uint8_t* at) {
            while (support::read_u16le(at) != simlink::kEndId) {
                const bool read = support::read_u16le(at) == simlink::kReadId;
                const std::uint32_t size = support::read_u32le(at + simlink::kSizeAt);
                std::uint8_t* data = at + (read ? simlink::kReadHeadBytes : simlink::kWriteHeadBytes);
                const auto found = words.find(support::read_u32le(at + simlink::kOffsetAt));
                if (read && found != words.end()) {
                    for (std::uint32_t byte = 0; byte < size; ++byte) {
                        data[byte] = static_cast<std::uint8_t>(byte < 4 ? found->second >> (8 * byte) : 0U);
                    }
                }
                at = data + size;
            }
        };
    }

    std::map<std::string, platform::WindowHandle> windows = {{"UIPCMAIN", 5}};
    std::uint32_t message = 0xC123;
    std::uint32_t process_id = 0x1A2B;
    std::uint16_t atom = 0xC001;
    platform::MappingHandle mapping = 9;
    bool view_fails = false;
    std::uint32_t last_error = 0;
    std::uint32_t reply = 1;
    int failing_sends = 0;
    std::function<void(std::uint8_t* block)> answer;

    std::vector<std::uint8_t> block = std::vector<std::uint8_t>(simlink::kBlockBytes, 0xEE);
    std::vector<std::string> calls;
    int sends = 0;
    std::uint32_t slept_ms = 0;
    platform::WindowHandle window = 0;
    std::int32_t sent_atom = 0;
    std::uint32_t sent_timeout_ms = 0;
};
