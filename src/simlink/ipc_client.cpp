#include "simlink/ipc_client.h"

#include <array>
#include <bit>
#include <charconv>
#include <cstring>
#include <span>

#include "support/bytes.h"

namespace simlink {

// Variables go to and from the block as they stand in memory.
static_assert(std::endian::native == std::endian::little);

namespace {

// "FSASMLIB:IPC:1A2B:1", the process id in hexadecimal.
std::string mapping_name(std::uint32_t process_id) {
    std::array<char, 8> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), process_id, 16).ptr;
    std::string name = kMessageText;
    name += ':';
    for (const char* digit = digits.data(); digit != end; ++digit) {
        name += *digit >= 'a' ? static_cast<char>(*digit - 'a' + 'A') : *digit;
    }
    name += ":1";
    return name;
}

}  // namespace

IpcClient::IpcClient(platform::SimTransport& transport) : transport_(transport) {
    requests_.reserve(kMostRequests);
}

IpcClient::~IpcClient() {
    IpcClose();
}

void IpcClient::IpcInit() {
    LinkWindow = 0;
    LinkMessage = 0;
    LinkAtom = 0;
    LinkMapping = 0;
    LinkView = nullptr;
    LinkNext = nullptr;
    requests_.clear();
}

bool IpcClient::fail(std::int32_t code, std::int32_t& result) {
    IpcClose();
    result = code;
    return false;
}

IpcClient::ServerKind IpcClient::find_server(platform::WindowHandle& window) {
    window = transport_.FindWindowExA(kServerClass);
    if (window != 0) {
        return ServerKind::own;
    }
    window = transport_.FindWindowExA(kNetworkedServerClass);
    return window != 0 ? ServerKind::networked : ServerKind::none;
}

bool IpcClient::IpcOpen(std::int32_t requestedSim, std::int32_t& result) {
    FsuipcVersionWord = 0;
    SimVersionWord = 0;
    if (is_open()) {
        result = kIpcAlreadyOpen;
        return false;
    }
    const ServerKind server = find_server(LinkWindow);
    if (server == ServerKind::none) {
        result = kIpcNoServer;
        return false;
    }
    LinkMessage = transport_.RegisterWindowMessageA(kMessageText);
    if (LinkMessage == 0) {
        result = kIpcNoMessage;
        return false;
    }
    if (!take_block(result) || !read_versions(result)) {
        return false;
    }
    if (static_cast<std::int32_t>(FsuipcVersionWord) < kLeastFsuipcVersion || SimVersionWord >> 16 != kSimVersionMark) {
        return fail(server == ServerKind::networked ? kIpcNetworkedWrong : kIpcWrongVersion, result);
    }
    SimVersionWord &= 0xFFFFU;
    if (requestedSim != 0 && static_cast<std::uint32_t>(requestedSim) != SimVersionWord) {
        return fail(kIpcWrongSimulator, result);
    }
    result = kIpcOkay;
    return true;
}

// The atom, the mapping and its view.
bool IpcClient::take_block(std::int32_t& result) {
    const std::string name = mapping_name(transport_.GetCurrentProcessId());
    LinkAtom = support::as_i16(transport_.GlobalAddAtomA(name));
    if (LinkAtom == 0) {
        return fail(kIpcNoAtom, result);
    }
    LinkMapping = transport_.CreateFileMappingA(kBlockBytes, name);
    if (transport_.GetLastError() == platform::kErrorAlreadyExists || LinkMapping == 0) {
        return fail(kIpcNoMapping, result);
    }
    LinkView = transport_.MapViewOfFile(LinkMapping);
    if (LinkView == nullptr) {
        return fail(kIpcNoView, result);
    }
    LinkNext = LinkView;
    requests_.clear();
    return true;
}

bool IpcClient::read_versions(std::int32_t& result) {
    for (int tries = 0; tries < kMostOpenTries && (FsuipcVersionWord == 0 || SimVersionWord == 0); ++tries) {
        if (!IpcRead(kOffsetFsuipcVersion, sizeof FsuipcVersionWord, &FsuipcVersionWord, result) ||
            !IpcRead(kOffsetSimVersion, sizeof SimVersionWord, &SimVersionWord, result)) {
            return fail(result, result);
        }
        const bool written = IpcWrite(kOffsetClientVersion, sizeof ClientVersionWord, &ClientVersionWord, result);
        if ((tries == 0 && !written) || !IpcProcess(result)) {
            return fail(result, result);
        }
        transport_.Sleep(kOpenPauseMs);
    }
    return true;
}

// Writes the head of a record at LinkNext, moves LinkNext behind its data and returns where the data goes.
std::uint8_t* IpcClient::append(std::uint16_t id, std::uint32_t offset, std::uint32_t size, void* destination) {
    if (!has_pending_requests()) {
        requests_.clear();  // also after a wait for an answer was unwound
    }
    requests_.push_back({id, used_bytes(), size, destination});
    support::put_u32le(LinkNext + kIdAt, id);
    support::put_u32le(LinkNext + kOffsetAt, offset);
    support::put_u32le(LinkNext + kSizeAt, size);
    std::uint32_t head_bytes = kWriteHeadBytes;
    if (id == kReadId) {
        const std::size_t entry = destination == nullptr ? 0 : requests_.size();
        support::put_u32le(LinkNext + kDestinationAt, static_cast<std::uint32_t>(entry));
        head_bytes = kReadHeadBytes;
    }
    std::uint8_t* data = LinkNext + head_bytes;
    LinkNext = data + size;
    return data;
}

bool IpcClient::IpcRead(std::uint32_t offset, std::uint32_t size, void* destination, std::int32_t& result) {
    if (!is_open()) {
        result = kIpcNotConnected;
        return false;
    }
    if (std::uint64_t{used_bytes()} + size + kReadHeadBytes + kStopBytes > kBlockLimit) {
        result = kIpcBlockFull;
        return false;
    }
    std::uint8_t* data = append(kReadId, offset, size, destination);
    if (size != 0) {
        std::memset(data, 0, size);
    }
    result = kIpcOkay;
    return true;
}

bool IpcClient::IpcWrite(std::uint32_t offset, std::uint32_t size, const void* source, std::int32_t& result) {
    if (!is_open()) {
        result = kIpcNotConnected;
        return false;
    }
    if (std::uint64_t{used_bytes()} + size + kWriteHeadBytes + kStopBytes > kBlockLimit) {
        result = kIpcBlockFull;
        return false;
    }
    std::uint8_t* data = append(kWriteId, offset, size, nullptr);
    if (size != 0) {
        std::memcpy(data, source, size);
    }
    result = kIpcOkay;
    return true;
}

bool IpcClient::send(std::uint32_t timeout_ms, std::uint32_t& reply) {
    return transport_.SendMessageTimeoutA(LinkWindow, LinkMessage, LinkAtom, timeout_ms, reply);
}

// NOTE: A send that succeeds on the tenth retry counts as failed all the same: nine retries can succeed.
bool IpcClient::send_with_retries(std::uint32_t& reply) {
    bool sent = send(kSendTimeoutMs, reply);
    int retries = 0;
    while (!sent && retries < kMostRetries) {
        transport_.Sleep(kRetryPauseMs);
        sent = send(kSendTimeoutMs, reply);
        ++retries;
    }
    return sent && retries < kMostRetries;
}

bool IpcClient::IpcProcess(std::int32_t& result) {
    if (!is_open()) {
        result = kIpcNotConnected;
        return false;
    }
    if (!has_pending_requests()) {
        result = kIpcNoRequests;
        return false;
    }
    support::put_u32le(LinkNext, kEndId);
    LinkNext = LinkView;
    std::uint32_t reply = 0;
    if (!send_with_retries(reply)) {
        result = transport_.GetLastError() != 0 ? kIpcSendFailed : kIpcTimedOut;
        clear_block();
        return false;
    }
    if (reply != kReplyOkay) {
        result = kIpcBadData;
        clear_block();
        return false;
    }
    const ScanOutcome outcome = scan_answers({LinkView, kBlockBytes}, requests_);
    requests_.clear();
    switch (outcome) {
        case ScanOutcome::complete:
            result = kIpcOkay;
            return true;
        case ScanOutcome::bad_head:
            result = kIpcBadData;
            return false;
        case ScanOutcome::unknown_id:  // the result stays as the caller had it
            break;
    }
    return false;
}

// Leaves an empty block, so that a server that takes up a send late, long after it was given up, finds nothing to do.
void IpcClient::clear_block() {
    support::put_u32le(LinkView, kEndId);
    requests_.clear();
}

void IpcClient::drop_pending() {
    if (is_open()) {
        LinkNext = LinkView;
        clear_block();
    }
}

ProbeOutcome IpcClient::probe(std::uint32_t timeout_ms) {
    drop_pending();
    platform::WindowHandle window = 0;
    if (!is_open() || find_server(window) == ServerKind::none) {
        return ProbeOutcome::no_window;
    }
    LinkWindow = window;
    std::uint32_t version_word = 0;
    std::int32_t result = kIpcOkay;
    IpcRead(kOffsetFsuipcVersion, sizeof version_word, &version_word, result);
    support::put_u32le(LinkNext, kEndId);
    LinkNext = LinkView;
    std::uint32_t reply = 0;
    const bool answered = send(timeout_ms, reply) && reply == kReplyOkay;
    clear_block();
    return answered ? ProbeOutcome::answered : ProbeOutcome::no_answer;
}

void IpcClient::IpcClose() {
    LinkWindow = 0;
    LinkMessage = 0;
    LinkNext = nullptr;
    requests_.clear();
    if (LinkAtom != 0) {
        transport_.GlobalDeleteAtom(static_cast<std::uint16_t>(LinkAtom));
        LinkAtom = 0;
    }
    if (LinkView != nullptr) {
        transport_.UnmapViewOfFile(LinkView);
        LinkView = nullptr;
    }
    if (LinkMapping != 0) {
        transport_.CloseHandle(LinkMapping);
        LinkMapping = 0;
    }
}

}  // namespace simlink
