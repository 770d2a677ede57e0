#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace tavlo {

/// How a request to a CD drive ended.
enum class CdAnswer {
    Done,
    NotAvailable,  ///< this system has no such way to a drive
    NoDrive,
    NoRights,
    NoDisc,
    Failed
};

/// A command to a drive whose answer is read (SCSI MMC).
using CdCommand = std::array<std::uint8_t, 10>;

/// A way of sending commands to a drive.
class CdTransport {
 public:
    CdTransport() = default;
    CdTransport(const CdTransport&) = delete;
    CdTransport& operator=(const CdTransport&) = delete;
    virtual ~CdTransport() = default;

    /// `drive` is a letter and ":", or a device's path.
    virtual CdAnswer open(const std::string& drive) = 0;
    /// Waits 5 seconds at most.
    virtual CdAnswer send(const CdCommand& command, std::span<std::uint8_t> data) = 0;
    virtual void close() = 0;
};

/// Sends commands through the system's own drivers.
std::unique_ptr<CdTransport> passThroughTransport();
/// Sends commands through the ASPI layer, where it is installed.
std::unique_ptr<CdTransport> aspiTransport();

struct CdTrackInfo {
    int minute = 0, second = 0, frame = 0;  ///< of its start
    int length = 0;                         ///< frames; a frame is 1/75 s
    bool isAudio = true;
};

/// The tracks as the system's multimedia interface tells them, without CD-TEXT.
class CdTracks {
 public:
    CdTracks() = default;
    CdTracks(const CdTracks&) = delete;
    CdTracks& operator=(const CdTracks&) = delete;
    virtual ~CdTracks() = default;

    virtual CdAnswer open(const std::string& drive) = 0;
    virtual int count() = 0;
    /// By its number, from 1 to the count.
    virtual std::optional<CdTrackInfo> track(int number) = 0;
    virtual void close() = 0;
};
std::unique_ptr<CdTracks> systemTracks();

/// Whether a path names a drive for CDs: "D:", or a device. It need not be there.
bool isCdDrive(const std::string& path);

/// From this version of the system's family on, commands pass on a handle for reading only.
constexpr bool readsOnly(int majorVersion) {
    return majorVersion >= 5;
}

}  // namespace tavlo
