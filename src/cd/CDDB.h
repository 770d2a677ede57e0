#pragma once

#include <memory>
#include <string>

#include "cd/CdText.h"
#include "cd/DiscToc.h"
#include "platform/CdDrive.h"

namespace tavlo {

/// Reads what is on a disc. Three readers do so by different routes.
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
    /// How the last reading ended; `Done` for a disc without audio tracks too.
    [[nodiscard]] CdAnswer answer() const { return answer_; }

 protected:
    DiscToc toc_;
    CdText text_;
    CdAnswer answer_ = CdAnswer::NotAvailable;
};

/// The two readers that send READ TOC to the drive; only its way differs.
class ScsiReader : public DiscReader {
 public:
    explicit ScsiReader(std::unique_ptr<CdTransport> transport)
        : transport_(std::move(transport)) {}
    bool InitMediaTOC(const std::string& drive) override;

 private:
    CdAnswer read(TocFormat format, std::size_t allocation, std::string& answer);

    std::unique_ptr<CdTransport> transport_;
};
class CDDB_SPTI final : public ScsiReader {
 public:
    explicit CDDB_SPTI(std::unique_ptr<CdTransport> transport = passThroughTransport())
        : ScsiReader(std::move(transport)) {}
};
class CDDB_ASPI final : public ScsiReader {
 public:
    explicit CDDB_ASPI(std::unique_ptr<CdTransport> transport = aspiTransport())
        : ScsiReader(std::move(transport)) {}
};

/// Asks the system's multimedia interface, which knows no CD-TEXT.
class CDDB_MCI final : public DiscReader {
 public:
    explicit CDDB_MCI(std::unique_ptr<CdTracks> tracks = systemTracks())
        : tracks_(std::move(tracks)) {}
    bool InitMediaTOC(const std::string& drive) override;

 private:
    std::unique_ptr<CdTracks> tracks_;
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
