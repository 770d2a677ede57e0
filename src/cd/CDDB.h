#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "cd/CdText.h"
#include "cd/DiscToc.h"
#include "platform/CdDrive.h"

namespace tavlo {

/// How long a drive may take for an answer.
inline constexpr std::chrono::milliseconds longestWait{5000};

/// Reads what is on a disc. Three readers do so by different routes. A drive that does not answer
/// in time is given up: its thread keeps what it works on, and this reader reads no more.
class DiscReader {
 public:
    DiscReader() = default;
    DiscReader(const DiscReader&) = delete;
    DiscReader& operator=(const DiscReader&) = delete;
    virtual ~DiscReader() = default;

    /// Reads the disc in a drive ("D:" or a device's path); true where it has audio tracks.
    virtual bool InitMediaTOC(const std::string& drive) = 0;

    /// The TOC text; empty until a disc was read.
    [[nodiscard]] std::string GetTOC() const { return toc_.text(); }
    /// Empty where the disc has none.
    [[nodiscard]] const CdText& GetTEXT() const { return text_; }
    [[nodiscard]] const DiscToc& toc() const { return toc_; }
    /// How the last reading ended; `Done` for a disc without audio tracks too, and where only the
    /// CD-TEXT is missing.
    [[nodiscard]] CdAnswer answer() const { return answer_; }

 protected:
    DiscToc toc_;
    CdText text_;
    CdAnswer answer_ = CdAnswer::NotAvailable;
};

/// The two readers that send READ TOC to the drive; only its way differs.
class ScsiReader : public DiscReader {
 public:
    ScsiReader(std::unique_ptr<CdTransport> transport, std::chrono::milliseconds limit)
        : transport_(std::move(transport)), limit_(limit) {}
    bool InitMediaTOC(const std::string& drive) override;

 private:
    CdAnswer read(TocFormat format, const std::optional<std::string>& drive, std::string& bytes);
    bool ask(std::function<void()> work);

    std::shared_ptr<CdTransport> transport_;  // none once the drive was given up
    const std::chrono::milliseconds limit_;
};
class CDDB_SPTI final : public ScsiReader {
 public:
    explicit CDDB_SPTI(std::unique_ptr<CdTransport> transport = passThroughTransport(),
                       std::chrono::milliseconds limit = longestWait)
        : ScsiReader(std::move(transport), limit) {}
};
class CDDB_ASPI final : public ScsiReader {
 public:
    explicit CDDB_ASPI(std::unique_ptr<CdTransport> transport = aspiTransport(),
                       std::chrono::milliseconds limit = longestWait)
        : ScsiReader(std::move(transport), limit) {}
};

/// Asks the system's multimedia interface, which knows no CD-TEXT.
class CDDB_MCI final : public DiscReader {
 public:
    explicit CDDB_MCI(std::unique_ptr<CdTracks> tracks = systemTracks(),
                      std::chrono::milliseconds limit = longestWait)
        : tracks_(std::move(tracks)), limit_(limit) {}
    bool InitMediaTOC(const std::string& drive) override;

 private:
    std::shared_ptr<CdTracks> tracks_;  // none once the drive was given up
    const std::chrono::milliseconds limit_;
};

/// Which readers are asked, by their number.
enum class TocMethod { All = 0, Spti = 1, Aspi = 2, Mci = 3 };

/// What the first reader that succeeds tells. Otherwise no tracks, and the most telling answer.
struct DiscContents {
    DiscToc toc;
    CdText text;
    CdAnswer answer = CdAnswer::NotAvailable;
};
DiscContents ReadDisc(std::string_view drive, TocMethod method = TocMethod::All);

/// The TOC text alone; empty where no reader succeeds.
std::string ReadDiscToc(std::string_view drive, TocMethod method = TocMethod::All);

/// The same with readers handed in, asked in their order.
DiscContents readDiscBy(std::string_view drive, std::span<DiscReader* const> readers);

}  // namespace tavlo
