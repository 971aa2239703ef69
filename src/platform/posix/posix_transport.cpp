#include "platform/posix/posix_transport.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "platform/posix/sim_wire.h"
#include "support/bytes.h"

namespace platform::posix {

namespace {

bool would_block(int error) {
    return error == EAGAIN || error == EWOULDBLOCK;
}

}  // namespace

bool PosixTransport::alive(const Window& window) const {
    if (!window.socket.valid()) {
        return false;
    }
    pollfd entry{window.socket.get(), POLLIN | POLLRDHUP, 0};
    return ::poll(&entry, 1, 0) >= 0 && (entry.revents & (POLLHUP | POLLRDHUP | POLLERR)) == 0;
}

int PosixTransport::connect(Window& window) {
    disconnect(window);
    Descriptor socket = make_packet_socket();
    if (!socket.valid()) {
        return errno;
    }
    if (const int error = connect_to_class(socket.get(), window.window_class)) {
        return error;
    }
    if (!peer_is_trusted(socket.get())) {
        return EACCES;
    }
    window.socket = std::move(socket);
    return 0;
}

void PosixTransport::disconnect(Window& window) {
    window.socket.reset();
    window.introduced_atoms.clear();
}

WindowHandle PosixTransport::FindWindowExA(const std::string& window_class) {
    auto window = std::find_if(windows_.begin(), windows_.end(),
                               [&](const Window& known) { return known.window_class == window_class; });
    if (window == windows_.end()) {
        windows_.push_back({window_class, Descriptor(), {}});
        window = windows_.end() - 1;
    }
    if (!alive(*window) && connect(*window) != 0) {
        return 0;
    }
    return static_cast<WindowHandle>(window - windows_.begin() + 1);
}

std::uint32_t PosixTransport::RegisterWindowMessageA(const std::string& text) {
    return registered_message(text);
}

std::uint32_t PosixTransport::GetCurrentProcessId() {
    return static_cast<std::uint32_t>(::getpid());
}

std::uint16_t PosixTransport::GlobalAddAtomA(const std::string& name) {
    if (next_atom_ < kFirstRegistered) {
        next_atom_ = kFirstRegistered;  // the numbers have gone round
    }
    atoms_.push_back({next_atom_++, name});
    return atoms_.back().number;
}

void PosixTransport::GlobalDeleteAtom(std::uint16_t atom) {
    std::erase_if(atoms_, [atom](const Atom& known) { return known.number == atom; });
    // The number comes again some day, with another mapping.
    for (Window& window : windows_) {
        std::erase(window.introduced_atoms, atom);
    }
}

MappingHandle PosixTransport::CreateFileMappingA(std::uint32_t size_bytes, const std::string& name) {
    last_error_ = 0;
    for (const Mapping& known : mappings_) {
        if (known.name == name) {
            last_error_ = kErrorAlreadyExists;
            return 0;
        }
    }
    Descriptor memory(::memfd_create(name.c_str(), MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (!memory.valid() || ::ftruncate(memory.get(), static_cast<off_t>(size_bytes)) != 0 ||
        ::fcntl(memory.get(), F_ADD_SEALS, F_SEAL_SHRINK) != 0) {
        last_error_ = static_cast<std::uint32_t>(errno);
        return 0;
    }
    mappings_.push_back({next_mapping_++, name, std::move(memory), size_bytes, nullptr});
    return mappings_.back().handle;
}

std::uint8_t* PosixTransport::MapViewOfFile(MappingHandle mapping) {
    for (Mapping& known : mappings_) {
        if (known.handle == mapping && known.view == nullptr) {
            void* view = ::mmap(nullptr, known.size_bytes, PROT_READ | PROT_WRITE, MAP_SHARED, known.memory.get(), 0);
            if (view == MAP_FAILED) {
                last_error_ = static_cast<std::uint32_t>(errno);
                return nullptr;
            }
            known.view = static_cast<std::uint8_t*>(view);
            return known.view;
        }
    }
    return nullptr;
}

void PosixTransport::UnmapViewOfFile(std::uint8_t* view) {
    for (Mapping& known : mappings_) {
        if (view != nullptr && known.view == view) {
            ::munmap(view, known.size_bytes);
            known.view = nullptr;
        }
    }
}

void PosixTransport::CloseHandle(MappingHandle mapping) {
    std::erase_if(mappings_, [mapping](const Mapping& known) { return known.handle == mapping; });
}

const PosixTransport::Mapping* PosixTransport::mapping_of(std::int32_t atom) const {
    for (const Atom& known : atoms_) {
        if (known.number == static_cast<std::uint16_t>(atom)) {
            for (const Mapping& mapping : mappings_) {
                if (mapping.name == known.name) {
                    return &mapping;
                }
            }
        }
    }
    return nullptr;
}

bool PosixTransport::SendMessageTimeoutA(WindowHandle window, std::uint32_t message, std::int32_t atom,
                                         std::uint32_t timeout_ms, std::uint32_t& reply) {
    if (window < 1 || window > static_cast<WindowHandle>(windows_.size())) {
        last_error_ = EBADF;
        return false;
    }
    Window& target = windows_[static_cast<std::size_t>(window - 1)];
    const TimePoint deadline = loop_.now() + Milliseconds(timeout_ms);
    int error = target.socket.valid() ? 0 : connect(target);
    if (error == 0) {
        error = send_packet(target, message, atom, deadline);
    }
    if (error == 0) {
        error = receive_reply(target, deadline, reply);
    }
    if (error != 0 && error != ETIMEDOUT) {
        disconnect(target);
    }
    last_error_ = error == ETIMEDOUT ? 0 : static_cast<std::uint32_t>(error);
    return error == 0;
}

int PosixTransport::send_packet(Window& window, std::uint32_t message, std::int32_t atom, TimePoint deadline) {
    SendPacket packet{};
    support::put_u32le(packet.data() + kSendMessageAt, message);
    support::put_u32le(packet.data() + kSendAtomAt, static_cast<std::uint32_t>(atom));
    support::put_u32le(packet.data() + kSendNumberAt, ++send_number_);

    iovec part{packet.data(), packet.size()};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
    const auto atom_number = static_cast<std::uint16_t>(atom);
    auto& introduced = window.introduced_atoms;
    const bool introduce = std::find(introduced.begin(), introduced.end(), atom_number) == introduced.end();
    const Mapping* mapping = introduce ? mapping_of(atom) : nullptr;
    if (mapping != nullptr) {
        header.msg_control = control.data();
        header.msg_controllen = control.size();
        cmsghdr* rights = CMSG_FIRSTHDR(&header);
        rights->cmsg_level = SOL_SOCKET;
        rights->cmsg_type = SCM_RIGHTS;
        rights->cmsg_len = CMSG_LEN(sizeof(int));
        const int memory = mapping->memory.get();
        std::memcpy(CMSG_DATA(rights), &memory, sizeof(memory));
    }
    while (::sendmsg(window.socket.get(), &header, MSG_NOSIGNAL | MSG_DONTWAIT) < 0) {
        const int error = errno;
        if (would_block(error)) {
            if (!loop_.wait_writable_serving_page(window.socket.get(), deadline)) {
                return ETIMEDOUT;
            }
        } else if (error != EINTR) {
            return error;
        }
    }
    if (mapping != nullptr) {
        introduced.push_back(atom_number);
    }
    return 0;
}

int PosixTransport::receive_reply(Window& window, TimePoint deadline, std::uint32_t& reply) {
    while (true) {
        ReplyPacket packet{};
        const ssize_t count = ::recv(window.socket.get(), packet.data(), packet.size(), MSG_DONTWAIT);
        if (count == 0) {
            return ECONNRESET;
        }
        if (count < 0) {
            const int error = errno;
            if (would_block(error)) {
                if (!loop_.wait_readable_serving_page(window.socket.get(), deadline)) {
                    return ETIMEDOUT;
                }
            } else if (error != EINTR) {
                return error;
            }
            continue;
        }
        // A reply of another number answers a send that was given up.
        if (count == static_cast<ssize_t>(kReplyPacketSize) &&
            support::read_u32le(packet.data() + kReplyNumberAt) == send_number_) {
            reply = support::read_u32le(packet.data() + kReplyValueAt);
            return 0;
        }
    }
}

void PosixTransport::Sleep(std::uint32_t milliseconds) {
    loop_.serve_page_until(loop_.now() + Milliseconds(milliseconds));
}

}  // namespace platform::posix
