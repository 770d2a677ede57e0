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
    OtherDevice,  ///< a device, but none for CDs
    NoRights,
    NoDisc,
    Attention,  ///< nothing was read, for something has changed since; worth asking again
    TimedOut,   ///< and what comes next would too
    Failed
};

/// What a drive's sense data (SCSI SPC-3, 4.5.3; at least 14 bytes) say about a command that
/// failed.
CdAnswer answerOfSense(std::span<const std::uint8_t> sense);

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
    /// Asks the system to give up after 5 seconds, which not every driver does.
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
    /// The number of the first track; 1 where that cannot be told.
    virtual int first() = 0;
    virtual int count() = 0;
    /// By its number, from that of the first one on.
    virtual std::optional<CdTrackInfo> track(int number) = 0;
    virtual void close() = 0;
};
std::unique_ptr<CdTracks> systemTracks();

/// What a path stands for that is given as a folder.
enum class DriveSort { None, CdDrive, OtherDevice };

/// "D:" or a device is a drive for CDs, also one that is not there; a device that the system knows
/// as something else is not.
DriveSort driveSort(const std::string& path);

/// From this version of the system's family on, commands pass on a handle for reading only.
constexpr bool readsOnly(int majorVersion) {
    return majorVersion >= 5;
}

}  // namespace tavlo
