#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace simlink {

// Results of the simulator link; `IpcResult` holds one of them.
enum IpcResultCode : std::int32_t {
    kIpcOkay = 0,
    kIpcAlreadyOpen = 1,
    kIpcNoServer = 2,
    kIpcNoMessage = 3,
    kIpcNoAtom = 4,
    kIpcNoMapping = 5,
    kIpcNoView = 6,
    kIpcWrongVersion = 7,
    kIpcWrongSimulator = 8,
    kIpcNotConnected = 9,
    kIpcNoRequests = 10,
    kIpcTimedOut = 11,
    kIpcSendFailed = 12,
    kIpcBadData = 13,
    kIpcNetworkedWrong = 14,
    kIpcBlockFull = 15,
};

inline const std::array<std::string_view, 16> IpcResultTexts = {
    "Okay",
    "Attempt to Open when already Open",
    "Cannot link to FSUIPC or WideClient",
    "Failed to Register common message with Windows",
    "Failed to create Atom for mapping filename",
    "Failed to create a file mapping object",
    "Failed to open a view to the file map",
    "Incorrect version of FSUIPC, or not FSUIPC",
    "Sim is not version requested",
    "Not Connected",
    "Call cannot execute: no requests accumulated",
    "IPC timed out all retries",
    "IPC sendmessage failed all retries",
    "IPC request contains bad data",
    "Maybe running on WideClient, but FS not running on Server, or wrong FSUIPC",
    "Read or Write request cannot be added, memory for Process is full",
};

using SimNameTable = std::array<std::string_view, 14>;

// Names of simulators, indexed by `SimVersionWord`.
inline const SimNameTable SimNames = {"Any",    "FS98", "FS2K", "CFS2",     "CFS1",    "FLY",       "FS2002",
                                      "FS2004", "FSX",  "ESP",  "Prepar3D", "Unknown", "PREP3D-V4", "PREP3D-V4+"};

// The names that stand after a connection has been tried again.
inline constexpr SimNameTable kSimNamesAtRetry = {"Any",      "FS98",    "FS2K",    "CFS2",   "CFS1",
                                                  "FLY",      "FS2002",  "FS2004",  "FSX",    "ESP",
                                                  "Prepar3D", "Unknown", "Unknown", "Unknown"};

// The text of a result; empty for a number that is none.
std::string_view result_text(std::int32_t result);

// The name of a simulator; "Unknown" for a word beyond the table.
std::string_view sim_name(const SimNameTable& names, std::uint32_t sim_version_word);

// The version for display: four digits from the high nibbles with a point behind the first, and a letter when the low
// half is not 0; 0x49740001 reads "4.974a". Nibbles above 9 give the characters behind "9"; no value fails.
std::string version_text(std::uint32_t fsuipc_version_word);

}  // namespace simlink
