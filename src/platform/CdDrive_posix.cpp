#include <fcntl.h>
#include <linux/cdrom.h>
#include <scsi/sg.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/CdDevice.h"
#include "platform/CdDrive.h"

namespace tavlo {

namespace {
constexpr unsigned firstLetter = 'd';
constexpr unsigned timeOut = 5000;  // milliseconds

bool isLetter(const std::string& drive) {
    const char letter = drive.empty() ? '\0' : static_cast<char>(drive[0] | 0x20);
    return (drive.size() == 2 || (drive.size() == 3 && drive[2] == '\\')) && drive[1] == ':' &&
           letter >= 'a' && letter <= 'z';
}

// "D:" is the first drive; letters before it have none.
std::string deviceOf(const std::string& drive) {
    if (!isLetter(drive)) return drive;
    const auto letter = static_cast<unsigned>(drive[0] | 0x20);
    return letter < firstLetter ? std::string() : "/dev/sr" + std::to_string(letter - firstLetter);
}

CdAnswer answerOf(int error) {
    switch (error) {
        case EACCES:
        case EPERM:
            return CdAnswer::NoRights;
        case ENOMEDIUM:
            return CdAnswer::NoDisc;
        case ETIMEDOUT:
            return CdAnswer::TimedOut;
        case ENOENT:
        case ENXIO:
        case ENODEV:
        case ENOTTY:
        case EINVAL:
        case ENOTDIR:
            return CdAnswer::NoDrive;
        default:
            return CdAnswer::Failed;
    }
}

class Device {
 public:
    Device() = default;
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;
    ~Device() { close(); }

    CdAnswer open(const std::string& drive) {
        close();
        handle_ = ::open(deviceOf(drive).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        return handle_ < 0 ? answerOf(errno) : CdAnswer::Done;
    }
    CdAnswer control(unsigned long request, void* argument) const {
        return ::ioctl(handle_, request, argument) < 0 ? answerOf(errno) : CdAnswer::Done;
    }
    void close() {
        if (handle_ >= 0) ::close(handle_);
        handle_ = -1;
    }

 private:
    int handle_ = -1;
};

class PassThrough final : public CdTransport {
 public:
    CdAnswer open(const std::string& drive) override { return device_.open(drive); }

    CdAnswer send(const CdCommand& command, std::span<std::uint8_t> data) override {
        CdCommand bytes = command;
        std::array<std::uint8_t, 14> sense{};
        sg_io_hdr request{};
        request.interface_id = 'S';
        request.dxfer_direction = SG_DXFER_FROM_DEV;
        request.cmd_len = static_cast<unsigned char>(bytes.size());
        request.cmdp = bytes.data();
        request.mx_sb_len = static_cast<unsigned char>(sense.size());
        request.sbp = sense.data();
        request.dxfer_len = static_cast<unsigned>(data.size());
        request.dxferp = data.data();
        request.timeout = timeOut;
        const CdAnswer answer = device_.control(SG_IO, &request);
        if (answer != CdAnswer::Done) return answer;
        if (request.status == 0 && request.host_status == 0) return CdAnswer::Done;
        constexpr unsigned short hostTimedOut = 3;
        return request.host_status == hostTimedOut ? CdAnswer::TimedOut : answerOfSense(sense);
    }

    void close() override { device_.close(); }

 private:
    Device device_;
};

class NoTransport final : public CdTransport {
 public:
    CdAnswer open(const std::string&) override { return CdAnswer::NotAvailable; }
    CdAnswer send(const CdCommand&, std::span<std::uint8_t>) override {
        return CdAnswer::NotAvailable;
    }
    void close() override {}
};

// The kernel's own reading of the disc. It tells the lead-out's place, so that a length is one
// frame less than the way to it, as multimedia interfaces have it.
class KernelTracks final : public CdTracks {
 public:
    CdAnswer open(const std::string& drive) override {
        const CdAnswer opened = device_.open(drive);
        if (opened != CdAnswer::Done) return opened;
        return device_.control(CDROMREADTOCHDR, &head_);
    }
    int first() override { return head_.cdth_trk0; }
    int count() override { return head_.cdth_trk1 - head_.cdth_trk0 + 1; }

    std::optional<CdTrackInfo> track(int number) override {
        const auto start = entry(number);
        const auto next = entry(number == head_.cdth_trk1 ? CDROM_LEADOUT : number + 1);
        if (!start || !next) return std::nullopt;
        const cdrom_msf0& time = start->cdte_addr.msf;
        return CdTrackInfo{time.minute, time.second, time.frame,
                           framesOf(*next) - framesOf(*start) - 1,
                           (start->cdte_ctrl & CDROM_DATA_TRACK) == 0};
    }
    void close() override { device_.close(); }

 private:
    std::optional<cdrom_tocentry> entry(int track) const {
        cdrom_tocentry result{};
        result.cdte_track = static_cast<__u8>(track);
        result.cdte_format = CDROM_MSF;
        if (device_.control(CDROMREADTOCENTRY, &result) != CdAnswer::Done) return std::nullopt;
        return result;
    }
    static int framesOf(const cdrom_tocentry& entry) {
        const cdrom_msf0& time = entry.cdte_addr.msf;
        return (time.minute * CD_SECS + time.second) * CD_FRAMES + time.frame;
    }

    Device device_;
    cdrom_tochdr head_{};
};
}  // namespace

std::unique_ptr<CdTransport> passThroughTransport() {
    return std::make_unique<PassThrough>();
}

std::unique_ptr<CdTransport> aspiTransport() {
    return std::make_unique<NoTransport>();
}

std::unique_ptr<CdTracks> systemTracks() {
    return std::make_unique<KernelTracks>();
}

// What is read byte by byte is seldom a drive; only those of the SCSI generic driver may be.
DriveSort driveSort(const std::string& path) {
    constexpr std::string_view devices = "/dev/";
    constexpr unsigned scsiGeneric = 21;  // major number
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        const bool mayBe = isLetter(path) || (path.starts_with(devices) &&
                                              path.find('/', devices.size()) == std::string::npos);
        return mayBe ? DriveSort::CdDrive : DriveSort::None;
    }
    const DeviceNumber device{S_ISBLK(status.st_mode), major(status.st_rdev),
                              minor(status.st_rdev)};
    const bool isGeneric = S_ISCHR(status.st_mode) && device.major == scsiGeneric;
    if (!device.isBlock && !isGeneric) return DriveSort::None;
    return isCdDevice(device) ? DriveSort::CdDrive : DriveSort::OtherDevice;
}

}  // namespace tavlo
