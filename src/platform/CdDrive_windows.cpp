// The first one has to come first.
// clang-format off
#include <windows.h>
#include <mmsystem.h>
#include <ntddscsi.h>
#include <winioctl.h>
// clang-format on

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <vector>

#include "platform/CdDrive.h"
#include "platform/WidePath.h"

namespace tavlo {

namespace {
constexpr std::size_t senseBytes = 14;
constexpr DWORD timeOut = 5;  // seconds

CdAnswer answerOf(DWORD error) {
    switch (error) {
        case ERROR_ACCESS_DENIED:
            return CdAnswer::NoRights;
        case ERROR_NOT_READY:
        case ERROR_NO_MEDIA_IN_DRIVE:
            return CdAnswer::NoDisc;
        case ERROR_SEM_TIMEOUT:
        case ERROR_TIMEOUT:
            return CdAnswer::TimedOut;
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_DRIVE:
        case ERROR_INVALID_NAME:
        case ERROR_BAD_PATHNAME:
            return CdAnswer::NoDrive;
        case ERROR_INVALID_FUNCTION:
        case ERROR_NOT_SUPPORTED:
            return CdAnswer::NotAvailable;
        default:
            return CdAnswer::Failed;
    }
}

std::wstring deviceOf(const std::string& drive) {
    const bool isLetter = drive.size() == 2 && drive[1] == ':';
    std::wstring path(drive.begin(), drive.end());
    return isLetter ? L"\\\\.\\" + path : path;
}

class PassThrough final : public CdTransport {
 public:
    ~PassThrough() override { closeDevice(); }

    CdAnswer open(const std::string& drive) override {
        device_ = deviceOf(drive);
        const DWORD major = LOBYTE(LOWORD(::GetVersion()));
        isForReading_ = readsOnly(static_cast<int>(major));
        const CdAnswer answer = openDevice();
        return answer == CdAnswer::NoRights && openForWriting() ? CdAnswer::Done : answer;
    }

    // Some drivers take commands only on a handle for writing.
    CdAnswer send(const CdCommand& command, std::span<std::uint8_t> data) override {
        const CdAnswer answer = sendOnce(command, data);
        return answer == CdAnswer::NoRights && openForWriting() ? sendOnce(command, data) : answer;
    }

    void close() override { closeDevice(); }

 private:
    struct Request {
        SCSI_PASS_THROUGH_DIRECT block;
        ULONG filler;
        UCHAR sense[32];
    };

    CdAnswer openDevice() {
        closeDevice();
        const DWORD access = isForReading_ ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
        handle_ = ::CreateFileW(device_.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                nullptr, OPEN_EXISTING, 0, nullptr);
        return handle_ == INVALID_HANDLE_VALUE ? answerOf(::GetLastError()) : CdAnswer::Done;
    }

    // False where it was so already, or cannot be.
    bool openForWriting() {
        if (!isForReading_) return false;
        isForReading_ = false;
        return openDevice() == CdAnswer::Done;
    }

    CdAnswer sendOnce(const CdCommand& command, std::span<std::uint8_t> data) {
        Request request{};
        SCSI_PASS_THROUGH_DIRECT& block = request.block;
        block.Length = sizeof block;
        block.CdbLength = static_cast<UCHAR>(command.size());
        block.SenseInfoLength = senseBytes;
        block.DataIn = SCSI_IOCTL_DATA_IN;
        block.DataTransferLength = static_cast<ULONG>(data.size());
        block.TimeOutValue = timeOut;
        block.DataBuffer = data.data();
        block.SenseInfoOffset = offsetof(Request, sense);
        std::memcpy(block.Cdb, command.data(), command.size());
        DWORD count = 0;
        if (!::DeviceIoControl(handle_, IOCTL_SCSI_PASS_THROUGH_DIRECT, &request, sizeof request,
                               &request, sizeof request, &count, nullptr)) {
            return answerOf(::GetLastError());
        }
        if (block.ScsiStatus == 0) return CdAnswer::Done;
        return answerOfSense(request.sense);
    }

    void closeDevice() {
        if (handle_ != INVALID_HANDLE_VALUE) ::CloseHandle(handle_);
        handle_ = INVALID_HANDLE_VALUE;
    }

    std::wstring device_;
    bool isForReading_ = true;
    HANDLE handle_ = INVALID_HANDLE_VALUE;
};

// --- ASPI ----------------------------------------------------------------------------------------

#pragma pack(push, 1)
struct AspiHead {
    BYTE command, status, adapter, flags;
    DWORD reserved;
};
struct AspiDeviceType {
    AspiHead head;
    BYTE target, unit, type, reserved;
};
struct AspiExecute {
    AspiHead head;
    BYTE target, unit;
    WORD reserved1;
    DWORD bufferSize;
    BYTE* buffer;
    BYTE senseSize, commandSize, adapterStatus, targetStatus;
    HANDLE posted;
    BYTE reserved2[20];
    BYTE command[16];
    BYTE sense[senseBytes + 2];
};
#pragma pack(pop)

class Aspi final : public CdTransport {
 public:
    ~Aspi() override {
        if (library_ != nullptr) ::FreeLibrary(library_);
    }

    CdAnswer open(const std::string& drive) override {
        if (!load()) return CdAnswer::NotAvailable;
        const int wanted = placeAmongDrives(drive);
        if (wanted < 0) return CdAnswer::NoDrive;
        return find(wanted) ? CdAnswer::Done : CdAnswer::NoDrive;
    }

    CdAnswer send(const CdCommand& command, std::span<std::uint8_t> data) override {
        constexpr BYTE executeCommand = 2, dataInPosted = 0x48, pending = 0, completed = 1;
        constexpr DWORD longestWait = 5000;  // milliseconds
        // What the layer does not answer in time it may still write to, so neither that nor the
        // layer itself is ever freed.
        const HANDLE posted = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
        if (posted == nullptr) return CdAnswer::Failed;
        auto request = std::make_unique<AspiExecute>();
        auto buffer = std::make_unique<std::vector<std::uint8_t>>(data.size());
        request->head = {executeCommand, 0, adapter_, dataInPosted, 0};
        request->target = target_;
        request->unit = unit_;
        request->bufferSize = static_cast<DWORD>(buffer->size());
        request->buffer = buffer->data();
        request->senseSize = senseBytes;
        request->commandSize = static_cast<BYTE>(command.size());
        request->posted = posted;
        std::memcpy(request->command, command.data(), command.size());
        send_(request.get());
        const volatile BYTE& status = request->head.status;
        if (status == pending) ::WaitForSingleObject(posted, longestWait);
        if (status == pending) {
            request.release();
            buffer.release();
            library_ = nullptr;
            return CdAnswer::TimedOut;
        }
        ::CloseHandle(posted);
        std::ranges::copy(*buffer, data.begin());
        if (status == completed) return CdAnswer::Done;
        return answerOfSense(request->sense);
    }

    void close() override {}

 private:
    using Send = DWORD(__cdecl*)(void*);
    using SupportInfo = DWORD(__cdecl*)();

    bool load() {
        constexpr DWORD completed = 1;
        if (library_ == nullptr) library_ = ::LoadLibraryW(L"wnaspi32.dll");
        if (library_ == nullptr) return false;
        const auto address = [this](const char* name) {
            return reinterpret_cast<void (*)()>(::GetProcAddress(library_, name));
        };
        const auto info = reinterpret_cast<SupportInfo>(address("GetASPI32SupportInfo"));
        send_ = reinterpret_cast<Send>(address("SendASPI32Command"));
        if (info == nullptr || send_ == nullptr) return false;
        const DWORD support = info();
        adapters_ = static_cast<BYTE>(support & 0xFF);
        return (support >> 8 & 0xFF) == completed;
    }

    // How many letters of CD drives stand before this one; -1 where it is none.
    static int placeAmongDrives(const std::string& drive) {
        int place = 0;
        for (wchar_t letter = L'A'; letter <= L'Z'; ++letter) {
            const wchar_t root[] = {letter, L':', L'\\', 0};
            if (::GetDriveTypeW(root) != DRIVE_CDROM) continue;
            if (!drive.empty() && (drive[0] & ~0x20) == letter) return place;
            ++place;
        }
        return -1;
    }

    // The CD unit of this place, adapters, targets and units in their order.
    bool find(int wanted) {
        constexpr BYTE askType = 1, completed = 1, cdDrive = 5, targets = 8, units = 8;
        for (BYTE adapter = 0; adapter < adapters_; ++adapter) {
            for (int place = 0; place < targets * units; ++place) {
                AspiDeviceType request{};
                request.head = {askType, 0, adapter, 0, 0};
                request.target = static_cast<BYTE>(place / units);
                request.unit = static_cast<BYTE>(place % units);
                send_(&request);
                if (request.head.status != completed || request.type != cdDrive) continue;
                if (wanted-- > 0) continue;
                adapter_ = adapter;
                target_ = request.target;
                unit_ = request.unit;
                return true;
            }
        }
        return false;
    }

    HMODULE library_ = nullptr;
    Send send_ = nullptr;
    BYTE adapters_ = 0, adapter_ = 0, target_ = 0, unit_ = 0;
};

// --- MCI -----------------------------------------------------------------------------------------

class Mci final : public CdTracks {
 public:
    ~Mci() override { closeDevice(); }

    CdAnswer open(const std::string& drive) override {
        closeDevice();
        const std::wstring element(drive.begin(), drive.end());
        MCI_OPEN_PARMSW request{};
        request.lpstrDeviceType = L"cdaudio";
        request.lpstrElementName = element.c_str();
        const DWORD flags = MCI_OPEN_TYPE | MCI_OPEN_ELEMENT | MCI_OPEN_SHAREABLE | MCI_WAIT;
        if (send(MCI_OPEN, flags, request) != 0) return CdAnswer::NoDrive;
        device_ = request.wDeviceID;
        MCI_SET_PARMS format{};
        format.dwTimeFormat = MCI_FORMAT_MSF;
        if (send(MCI_SET, MCI_SET_TIME_FORMAT | MCI_WAIT, format) != 0) return CdAnswer::Failed;
        return status(MCI_STATUS_MEDIA_PRESENT, 0).value_or(0) != 0 ? CdAnswer::Done
                                                                    : CdAnswer::NoDisc;
    }

    // There is no question for it, but numbers that the disc does not have are refused. A driver
    // that counts from 1 on every disc accepts that one; then the number on the disc cannot be
    // told.
    int first() override {
        constexpr DWORD mostTracks = 99;
        for (DWORD number = 1; number <= mostTracks; ++number) {
            if (status(MCI_STATUS_POSITION, number)) return static_cast<int>(number);
        }
        return 1;
    }

    int count() override {
        return static_cast<int>(status(MCI_STATUS_NUMBER_OF_TRACKS, 0).value_or(0));
    }

    std::optional<CdTrackInfo> track(int number) override {
        const auto index = static_cast<DWORD>(number);
        const auto position = status(MCI_STATUS_POSITION, index);
        const auto length = status(MCI_STATUS_LENGTH, index);
        const auto type = status(MCI_CDA_STATUS_TYPE_TRACK, index);
        if (!position || !length || !type) return std::nullopt;
        constexpr int secondsPerMinute = 60, framesPerSecond = 75;
        const int frames = (MCI_MSF_MINUTE(*length) * secondsPerMinute + MCI_MSF_SECOND(*length)) *
                               framesPerSecond +
                           MCI_MSF_FRAME(*length);
        return CdTrackInfo{MCI_MSF_MINUTE(*position), MCI_MSF_SECOND(*position),
                           MCI_MSF_FRAME(*position), frames, *type == MCI_CDA_TRACK_AUDIO};
    }

    void close() override { closeDevice(); }

 private:
    template <typename Parameters>
    MCIERROR send(UINT message, DWORD_PTR flags, Parameters& parameters) const {
        return ::mciSendCommandW(device_, message, flags, reinterpret_cast<DWORD_PTR>(&parameters));
    }

    // Of the disc, or of the track where it is not 0.
    [[nodiscard]] std::optional<DWORD> status(DWORD item, DWORD track) const {
        MCI_STATUS_PARMS request{};
        request.dwItem = item;
        request.dwTrack = track;
        const DWORD_PTR flags = MCI_STATUS_ITEM | MCI_WAIT | (track != 0 ? MCI_TRACK : 0U);
        if (send(MCI_STATUS, flags, request) != 0) return std::nullopt;
        return static_cast<DWORD>(request.dwReturn);
    }

    void closeDevice() {
        MCI_GENERIC_PARMS request{};
        if (device_ != 0) send(MCI_CLOSE, MCI_WAIT, request);
        device_ = 0;
    }

    MCIDEVICEID device_ = 0;
};
}  // namespace

std::unique_ptr<CdTransport> passThroughTransport() {
    return std::make_unique<PassThrough>();
}

std::unique_ptr<CdTransport> aspiTransport() {
    return std::make_unique<Aspi>();
}

std::unique_ptr<CdTracks> systemTracks() {
    return std::make_unique<Mci>();
}

// A letter that no drive has counts too, so that it can be told.
DriveSort driveSort(const std::string& path) {
    constexpr std::string_view devices = R"(\\.\)";
    const bool isDevice =
        path.starts_with(devices) && path.find('\\', devices.size()) == std::string::npos;
    const DriveSort other = isDevice ? DriveSort::OtherDevice : DriveSort::None;
    const std::string drive = isDevice ? path.substr(devices.size()) : path;
    const bool hasEnd = drive.size() == 3 && (drive[2] == '\\' || drive[2] == '/');
    if ((drive.size() != 2 && !hasEnd) || drive[1] != ':') return other;
    const UINT kind = ::GetDriveTypeW(plainWidePath(drive.substr(0, 2) + "\\").c_str());
    return kind == DRIVE_CDROM || kind == DRIVE_NO_ROOT_DIR ? DriveSort::CdDrive : other;
}

}  // namespace tavlo
