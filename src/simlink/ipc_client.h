#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/sim_transport.h"
#include "simlink/block_scan.h"
#include "simlink/ipc_block.h"
#include "simlink/ipc_texts.h"

namespace simlink {

// What a probe of a link has found.
enum class ProbeOutcome {
    no_window,  // the server is not there
    no_answer,  // it is there and does not answer
    answered,
};

// The client of the simulator's request block. A caller appends read and write requests to the block and hands it to
// the server with IpcProcess, which scatters the answers into the callers' variables. Every operation sets the result
// (an IpcResultCode) and returns whether it succeeded. Not one of them allocates.
//
// Calling order: IpcInit, IpcOpen; then cycles of IpcRead and IpcWrite in any mix and one IpcProcess; then IpcClose. On
// a closed link all of them fail harmlessly with result 9 and leave the callers' variables as they are.
class IpcClient {
  public:
    explicit IpcClient(platform::SimTransport& transport);
    ~IpcClient();
    IpcClient(const IpcClient&) = delete;
    IpcClient& operator=(const IpcClient&) = delete;

    // Sets the link state to "closed" without releasing anything. Called directly before IpcOpen.
    void IpcInit();
    // Finds the server, shares the block with it and checks the versions. `requestedSim` 0 = any simulator. Waits up to
    // half a second for a server that answers with zeros, and as long as IpcProcess for one that does not answer.
    bool IpcOpen(std::int32_t requestedSim, std::int32_t& result);
    // Appends a read of `size` bytes at a simulator offset. The destination must live until the next IpcProcess, which
    // fills it; null = the data is skipped.
    bool IpcRead(std::uint32_t offset, std::uint32_t size, void* destination, std::int32_t& result);
    // Appends a write; the data is copied at once.
    bool IpcWrite(std::uint32_t offset, std::uint32_t size, const void* source, std::int32_t& result);
    // Sends the block, at most eleven times, and scatters the answers. Blocks for as long as the server takes, 23
    // seconds at most. The pending requests are gone afterwards, whatever happens.
    bool IpcProcess(std::int32_t& result);
    // Releases everything; safe in any state.
    void IpcClose();

    bool is_open() const { return LinkView != nullptr; }
    bool has_pending_requests() const { return LinkNext != LinkView; }

    // Drops the pending requests, as a failed IpcProcess does.
    void drop_pending();
    // Looks whether a server that has stopped answering is back, with one send of a block of its own that reads a
    // version word: never repeated, nothing sent when there is no window. Takes the window that it finds, so that a
    // simulator that was started again is used from then on. Drops the pending requests. Only on an open link.
    ProbeOutcome probe(std::uint32_t timeout_ms);

    // Link state; 0 while closed.
    platform::WindowHandle LinkWindow = 0;
    std::uint32_t LinkMessage = 0;
    std::int32_t LinkAtom = 0;  // 16-bit signed, widened with its sign
    platform::MappingHandle LinkMapping = 0;
    std::uint8_t* LinkView = nullptr;
    std::uint8_t* LinkNext = nullptr;

    std::uint32_t FsuipcVersionWord = 0;  // offset 0x3304
    std::uint32_t SimVersionWord = 0;     // offset 0x3308; its low half after a successful open
    std::uint16_t ClientVersionWord = 0;  // always 0

    // The result that most callers share, and the text of the first connection attempt.
    std::int32_t IpcResult = kIpcOkay;
    std::string ConnectionStatus;

  private:
    enum class ServerKind { none, own, networked };

    ServerKind find_server(platform::WindowHandle& window);
    bool take_block(std::int32_t& result);
    bool read_versions(std::int32_t& result);
    bool fail(std::int32_t code, std::int32_t& result);

    std::uint32_t used_bytes() const { return static_cast<std::uint32_t>(LinkNext - LinkView); }
    std::uint8_t* append(std::uint16_t id, std::uint32_t offset, std::uint32_t size, void* destination);
    bool send(std::uint32_t timeout_ms, std::uint32_t& reply);
    bool send_with_retries(std::uint32_t& reply);
    void clear_block();

    platform::SimTransport& transport_;
    std::vector<BlockRequest> requests_;  // of the block, in order; its capacity is the most that a block holds
};

}  // namespace simlink
